#pragma once

#include <cstddef>

/// While one of these lives, the n-th allocation of this thread through operator new throws std::bad_alloc, and only
/// that one. Other threads, and what the C libraries take from malloc, are left alone.
class FailingAllocation
{
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether there were so many allocations that one failed.
    bool happened() const;
};

/// Blocks that operator new gave to this thread and that were not given back by it.
long liveBlocks();
