#include "failing_allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t countdown = 0; // 0: nothing fails
thread_local bool failed = false;
thread_local long live = 0;

void* allocate(std::size_t size, std::size_t alignment)
{
    if (countdown > 0 && --countdown == 0)
    {
        failed = true;
        throw std::bad_alloc();
    }
    void* block = nullptr;
    if (alignment <= alignof(std::max_align_t))
        block = std::malloc(size);
    else if (posix_memalign(&block, alignment, size) != 0)
        block = nullptr;
    if (!block)
        throw std::bad_alloc();
    ++live;
    return block;
}

void release(void* block) noexcept
{
    if (block)
        --live;
    std::free(block);
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t number)
{
    failed = false;
    countdown = number;
}

FailingAllocation::~FailingAllocation()
{
    countdown = 0;
}

bool FailingAllocation::happened() const
{
    return failed;
}

long liveBlocks()
{
    return live;
}

// The program's own operators take the place of the standard library's, in the shared libraries too.

void* operator new(std::size_t size)
{
    return allocate(size, 0);
}

void* operator new[](std::size_t size)
{
    return allocate(size, 0);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete[](void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    release(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    release(block);
}

void operator delete(void* block, std::align_val_t) noexcept
{
    release(block);
}

void operator delete[](void* block, std::align_val_t) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    release(block);
}

void operator delete[](void* block, std::size_t, std::align_val_t) noexcept
{
    release(block);
}
