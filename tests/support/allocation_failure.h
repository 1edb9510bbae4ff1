// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <ostream>

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
/// Every failure must arrive as std::bad_alloc, and when the subject is destroyed it may leave no block.
/// @p prepare makes what the work runs on, @p look gets it after each run, and whether an allocation failed in that
/// run.
/// @p isAlone: the work changes the subject only, so that a run without a failure leaves no block either.
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

/// The same with @p checkUntouched, which looks at the subject after each failure.
template <typename Prepare, typename Work, typename CheckUntouched>
std::size_t failEveryAllocation(Prepare prepare, Work work, CheckUntouched checkUntouched)
{
    const auto look = [&](auto& subject, bool failed) {
        if (failed)
            checkUntouched(subject);
    };
    return runWithEveryAllocationFailing(prepare, work, look, false);
}

/// The same for an operation on a State, which must be usable afterwards, as State::use() tries.
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
