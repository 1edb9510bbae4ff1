// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "allocation_failure.h"

#include <cstdlib>

namespace {

thread_local std::size_t allocationsUntilFailure = 0; // 0: none fails
thread_local long blocks = 0;

bool failsNow() noexcept
{
    return allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
}

void* allocate(std::size_t size)
{
    void* memory = failsNow() ? nullptr : std::malloc(size ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    ++blocks;
    return memory;
}

void* allocate(std::size_t size, std::align_val_t alignment)
{
    const auto unit = static_cast<std::size_t>(alignment);
    void* memory = failsNow() ? nullptr : std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
    if (!memory)
        throw std::bad_alloc();
    ++blocks;
    return memory;
}

void release(void* memory) noexcept
{
    if (memory)
        --blocks;
    std::free(memory);
}

} // namespace

namespace test_support {

long liveBlocks()
{
    return blocks;
}

FailingAllocation::FailingAllocation(std::size_t number)
{
    allocationsUntilFailure = number;
}

FailingAllocation::~FailingAllocation()
{
    allocationsUntilFailure = 0;
}

bool FailingAllocation::happened() const
{
    return allocationsUntilFailure == 0;
}

} // namespace test_support

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, alignment);
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return allocate(size, alignment);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}
