#pragma once

#include "allocation_failure.h"

#include <gtest/gtest.h>

#include <new>

/// Runs @p operate on a fresh State, again and again, each time with the next allocation failing, until none does.
/// Every failure must arrive as std::bad_alloc; the state must then be usable, as State::use() tries; and when it is
/// destroyed nothing may be left.
template <typename State, typename Operate>
void everyAllocationFails(Operate operate)
{
    constexpr std::size_t endless = 100000;
    for (std::size_t number = 1; number < endless; ++number)
    {
        const long before = test_support::liveBlocks();
        bool happened = false;
        bool arrived = false;
        {
            State state;
            {
                const test_support::FailingAllocation failure(number);
                try
                {
                    operate(state);
                }
                catch (const std::bad_alloc&)
                {
                    arrived = true;
                }
                happened = failure.happened();
            }
            state.use();
        }
        ASSERT_EQ(arrived, happened) << "failure of allocation " << number << " did not arrive as an exception";
        ASSERT_EQ(test_support::liveBlocks(), before) << "blocks left after failure of allocation " << number;
        if (!happened)
            return;
    }
    FAIL() << "the operation never comes to an end";
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
