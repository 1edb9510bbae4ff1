// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <ostream>

namespace test_support {

/// While an object exists, the n-th call of `operator new` in this thread, counted from 1, throws std::bad_alloc. The
/// program must contain allocation_failure.cpp.
class FailingAllocation
{
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// True if the n-th call was reached.
    bool happened() const;
};

/// Number of blocks that this thread has allocated with `operator new` and not freed.
long liveBlocks();

/// Runs @p work repeatedly. In the n-th run the n-th allocation fails, until a run needs fewer allocations. Expects
/// that each failure is thrown as std::bad_alloc and that nothing leaks.
/// @param prepare  creates the object on which @p work runs
/// @param look     called after each run with this object, and true if an allocation failed
/// @param isAlone  true if @p work changes only this object, so that a run without a failure must not leak either
/// @return number of allocations that failed
template <typename Prepare, typename Work, typename Look>
std::size_t runWithEveryAllocationFailing(Prepare prepare, Work work, Look look, bool isAlone)
{
    constexpr std::size_t endless = 100000;
    for (std::size_t number = 1; number < endless; ++number)
    {
        const long before = liveBlocks();
        bool happened = false;
        bool arrived = false;
        {
            auto subject = prepare();
            {
                const FailingAllocation failure(number);
                try
                {
                    work(subject);
                }
                catch (const std::bad_alloc&)
                {
                    arrived = true;
                }
                happened = failure.happened();
            }
            look(subject, happened);
        }
        EXPECT_EQ(arrived, happened) << "failure of allocation " << number << " did not arrive as an exception";
        if (happened || isAlone)
        {
            EXPECT_LE(liveBlocks(), before) << "blocks left after failure of allocation " << number;
        }
        if (!happened || testing::Test::HasFailure())
            return number - 1;
    }
    ADD_FAILURE() << "the operation never ends";
    return endless;
}

/// The same, but calls @p checkUntouched with the object after each failure.
template <typename Prepare, typename Work, typename CheckUntouched>
std::size_t failEveryAllocation(Prepare prepare, Work work, CheckUntouched checkUntouched)
{
    const auto look = [&](auto& subject, bool failed) {
        if (failed)
            checkUntouched(subject);
    };
    return runWithEveryAllocationFailing(prepare, work, look, false);
}

/// The same for an operation on a State. Calls State::use() after each run to check that the state is usable.
template <typename State, typename Operate>
void expectUsableAfterEveryFailure(Operate operate)
{
    const auto use = [](State& state, bool /*failed*/) { state.use(); };
    runWithEveryAllocationFailing([] { return State(); }, operate, use, true);
}

/// An operation as a row of a table.
template <typename State>
struct AllocatingOperation
{
    const char* name;
    void (*operate)(State&);
};

template <typename State>
void PrintTo(const AllocatingOperation<State>& operation, std::ostream* stream)
{
    *stream << operation.name;
}

} // namespace test_support
