// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Runs a fuzz target over the files and folders given as arguments, without a fuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::size_t replayed = 0;

void replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::printf("%s\n", path.filename().c_str());
    std::fflush(stdout);
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    ++replayed;
}

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
    {
        if (std::filesystem::is_regular_file(argv[i]))
            replay(argv[i]);
        else
        {
            for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
                replay(entry.path());
        }
    }
    std::printf("%zu inputs\n", replayed);
    return replayed > 0 ? 0 : 1; // nothing replayed is nothing shown
}
