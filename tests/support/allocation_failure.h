#pragma once

#include <cstddef>
#include <new>
#include <stdexcept>

namespace test_support {

/// While this object lives, the n-th `operator new` of this thread, counted from 1, throws std::bad_alloc. Needs
/// allocation_failure.cpp in the program.
class FailingAllocation
{
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether that allocation was reached.
    bool happened() const;
};

/// Blocks that this thread got from `operator new`, less those that it gave back.
long liveBlocks();

/// Runs @p work with its first allocation failing, then its second, and so on until it needs no more of them.
/// @p prepare makes what the work runs on, @p checkUntouched looks at it after each failure.
/// @return number of allocations that failed
template <typename Prepare, typename Work, typename CheckUntouched>
std::size_t failEveryAllocation(Prepare prepare, Work work, CheckUntouched checkUntouched)
{
    for (std::size_t number = 1;; ++number)
    {
        auto subject = prepare();
        bool thrown = false;
        bool happened = false;
        {
            const FailingAllocation failure(number);
            try
            {
                work(subject);
            }
            catch (const std::bad_alloc&)
            {
                thrown = true;
            }
            happened = failure.happened();
        }
        if (!happened)
            return number - 1;
        if (!thrown)
            throw std::logic_error("a failed allocation was not reported");
        checkUntouched(subject);
    }
}

} // namespace test_support
