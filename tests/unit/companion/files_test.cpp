#include "companion/files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using companion::Cancelled;
using companion::Crc32;
using companion::Download;

// Reads and writes as the client does, without a server: pieces of 4096 bytes, the stream's state never looked at.
class LocalFiles : public DataBaseClient
{
public:
    std::string content;

    void readFile(const std::string& /*database*/, const std::string& /*gridFsCollection*/,
                  const std::string& /*fileName*/, std::iostream* stream) override
    {
        for (std::size_t begin = 0; begin < content.size(); begin += 4096)
            stream->write(content.data() + begin,
                          static_cast<std::streamsize>(std::min<std::size_t>(4096, content.size() - begin)));
    }

    void writeFile(const std::string& /*database*/, const std::string& /*gridFsCollection*/,
                   const std::string& /*fileName*/, const std::string& inputFilePath) override
    {
        std::ifstream file(inputFilePath, std::ios::binary);
        ASSERT_TRUE(file.is_open());
        content.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
};

TEST(Crc32, GivesTheCheckValueOfItsDefinition)
{
    Crc32 checksum;
    EXPECT_EQ(checksum.value(), 0U);
    checksum.add("1234", 4);
    checksum.add("56789", 5);
    EXPECT_EQ(checksum.value(), 0xcbf43926U);
}

TEST(Download, HandsOnCountsAndChecksWhatArrives)
{
    LocalFiles client;
    client.content.assign(10000, 'x');
    std::ostringstream target;
    std::vector<std::uint64_t> progress;
    Download download(target, [&progress](std::uint64_t bytes) {
        progress.push_back(bytes);
        return true;
    });

    client.readFile("d", "fs", "name", &download);

    EXPECT_EQ(target.str(), client.content);
    EXPECT_EQ(download.bytes(), 10000U);
    EXPECT_EQ(progress, (std::vector<std::uint64_t>{4096, 8192, 10000}));
    Crc32 expected;
    expected.add(client.content.data(), client.content.size());
    EXPECT_EQ(download.crc32(), expected.value());
}

TEST(Download, CancelledEndsTheCopyWhereAnOrdinaryStreamInAFailedStateDoesNot)
{
    LocalFiles client;
    client.content.assign(100 * 4096, 'x');
    std::ostringstream target;
    int pieces = 0;
    Download download(target, [&pieces](std::uint64_t) { return ++pieces < 3; });

    EXPECT_THROW(client.readFile("d", "fs", "name", &download), Cancelled);
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(target.str().size(), 3U * 4096U);

    std::stringstream failed;
    failed.setstate(std::ios::badbit);
    EXPECT_NO_THROW(client.readFile("d", "fs", "name", &failed)) << "the trap: the copy goes on into nothing";
}

TEST(Download, EndsTheCopyWhenItsTargetFails)
{
    LocalFiles client;
    client.content = "x";
    std::ofstream target("/dev/full", std::ios::binary);
    target.rdbuf()->pubsetbuf(nullptr, 0);
    target.setstate(std::ios::badbit);
    Download download(target);
    EXPECT_THROW(client.readFile("d", "fs", "name", &download), std::runtime_error);
    EXPECT_EQ(download.bytes(), 0U);
}

TEST(Download, TakesSingleCharactersToo)
{
    std::ostringstream target;
    Download download(target);
    download.put('a').put('b');
    EXPECT_EQ(target.str(), "ab");
    EXPECT_EQ(download.bytes(), 2U);
}

TEST(StoringAStream, ThatBreaksStoresNothing)
{
    struct BreakingBuffer : std::streambuf
    {
        int_type underflow() override { throw std::domain_error("the medium is gone"); }
    };
    LocalFiles client;
    client.content = "before";
    BreakingBuffer buffer;
    std::istream source(&buffer);
    EXPECT_THROW(companion::writeFile(client, "d", "fs", "name", source), std::runtime_error);
    EXPECT_EQ(client.content, "before");
}

TEST(StoringAStream, StoresItFromItsReadPositionOn)
{
    LocalFiles client;
    std::string text(200000, '\0');
    for (std::size_t index = 0; index < text.size(); ++index)
        text[index] = static_cast<char>(index * 7);
    std::istringstream source("skip" + text);
    source.ignore(4);

    companion::writeFile(client, "d", "fs", "name", source);

    EXPECT_EQ(client.content, text);
}

TEST(StoringAGenerator, StoresWhatItGivesUntilItGivesNothing)
{
    LocalFiles client;
    int calls = 0;
    companion::writeFile(client, "d", "fs", "name", [&calls](char* buffer, std::size_t capacity) -> std::size_t {
        EXPECT_GT(capacity, 2U);
        buffer[0] = 'a';
        buffer[1] = 'b';
        return ++calls <= 3 ? 2 : 0;
    });
    EXPECT_EQ(client.content, "ababab");
}

TEST(StoringAGenerator, ThatThrowsStoresNothing)
{
    LocalFiles client;
    client.content = "before";
    const auto store = [&client] {
        companion::writeFile(client, "d", "fs", "name",
                             [](char*, std::size_t) -> std::size_t { throw std::domain_error("no more"); });
    };
    EXPECT_THROW(store(), std::domain_error);
    EXPECT_EQ(client.content, "before");
}

} // namespace
