// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How many bytes of memory does a field of a flat record take? Counts the bytes of all blocks of the document, rounded
// up as the allocator does.

#include "bson_to_properties.h"
#include "object_properties.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <new>

namespace {

std::size_t liveBytes = 0;
std::size_t liveBlocks = 0;

void* counted(void* block)
{
    if (!block)
        throw std::bad_alloc();
    liveBytes += malloc_usable_size(block);
    ++liveBlocks;
    return block;
}

void uncount(void* block) noexcept
{
    if (!block)
        return;
    liveBytes -= malloc_usable_size(block);
    --liveBlocks;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    return counted(std::malloc(size));
}

void* operator new[](std::size_t size)
{
    return counted(std::malloc(size));
}

void operator delete(void* block) noexcept
{
    uncount(block);
}

void operator delete[](void* block) noexcept
{
    uncount(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    uncount(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    uncount(block);
}

namespace {

template <typename Make>
void report(const Shape& shape, const char* library, Make make)
{
    const std::size_t bytesBefore = liveBytes;
    const std::size_t blocksBefore = liveBlocks;
    const auto document = make();
    const auto fields = static_cast<double>(shape.fields);
    std::printf("%-20s %-16s %8.1f bytes per field %6.2f blocks per field\n", shape.name.c_str(), library,
                static_cast<double>(liveBytes - bytesBefore) / fields,
                static_cast<double>(liveBlocks - blocksBefore) / fields);
}

} // namespace

int main()
{
    for (const Shape* shape : allShapes())
    {
        report(*shape, "database_client", [shape] {
            bson_t bson;
            bson_init_static(&bson, shape->bytes.data(), shape->bytes.size());
            auto document = std::make_unique<ObjectProperties>();
            BsonToProperties::convert(&bson, document.get());
            return document;
        });
        report(*shape, "nlohmann_json",
               [shape] { return std::make_unique<nlohmann::json>(nlohmann::json::from_bson(shape->bytes)); });
    }
    return 0;
}
