// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Key paths of any bytes, and operations in any order: the library and the model of its rules agree after every step.

#include "byte_source.h"
#include "model/operation.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr std::size_t longest = 64;

Operation readOperation(ByteSource& source, const System& system)
{
    Operation operation;
    operation.kind = source.byte() % system.operations.size();
    const unsigned places = source.byte();
    operation.subject = places % system.subjects;
    operation.other = places / 8 % system.subjects;
    operation.target = places / 64 % system.subjects;
    operation.key = source.text();
    const unsigned more = source.byte();
    if (more & 1U)
        operation.text = source.text();
    if (more & 2U)
        operation.options = source.text();
    if (more & 4U)
        operation.number = source.number<std::int64_t>();
    if (more & 8U)
        operation.real = source.number<double>();
    operation.index = static_cast<int>(more / 16) - 1;
    return operation;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<System> systems{propertySystem(), documentSystem(), filterSystem()};
    ByteSource source(data, size);
    const System& system = systems[source.byte() % systems.size()];
    std::vector<Operation> sequence;
    while (!source.empty() && sequence.size() < longest)
        sequence.push_back(readOperation(source, system));
    const auto difference = system.run(sequence);
    if (difference)
    {
        for (const auto& operation : sequence)
            std::fprintf(stderr, "%s\n", describe(system.operations[operation.kind], operation).c_str());
        require(false, difference->text.c_str());
    }
    return 0;
}
