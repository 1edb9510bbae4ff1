// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <list>
#include <new>
#include <utility>

/// A stack of the open levels while nested data is visited without recursion. The first levels are stored in the object
/// itself, so usual depths need no memory on the heap. Deeper levels are on the heap, so no depth exhausts the stack of
/// the thread. References to a level stay valid until it is popped.
template <typename Level>
class NestingStack
{
public:
    NestingStack() = default;
    NestingStack(const NestingStack&) = delete;
    NestingStack& operator=(const NestingStack&) = delete;

    ~NestingStack()
    {
        while (!empty())
            pop();
    }

    bool empty() const noexcept { return m_depth == 0; }
    std::size_t size() const noexcept { return m_depth; }

    Level& top() noexcept { return m_depth <= nearLevels ? *near(m_depth - 1) : m_far.back().level; }

    template <typename... Arguments>
    Level& push(Arguments&&... arguments)
    {
        if (m_depth < nearLevels)
            new (m_near + m_depth * sizeof(Level)) Level{std::forward<Arguments>(arguments)...};
        else
            m_far.emplace_back(std::forward<Arguments>(arguments)...);
        ++m_depth;
        return top();
    }

    void pop() noexcept
    {
        if (m_depth <= nearLevels)
            near(m_depth - 1)->~Level();
        else
            m_far.pop_back();
        --m_depth;
    }

private:
    // More than the 100 levels that servers accept, but only about ten kilobytes.
    static constexpr std::size_t nearLevels = 112;

    struct FarLevel
    {
        template <typename... Arguments>
        explicit FarLevel(Arguments&&... arguments) : level{std::forward<Arguments>(arguments)...}
        {}

        Level level;
    };

    Level* near(std::size_t index) noexcept
    {
        return std::launder(reinterpret_cast<Level*>(m_near + index * sizeof(Level)));
    }

    alignas(Level) unsigned char m_near[nearLevels * sizeof(Level)];
    std::list<FarLevel> m_far;
    std::size_t m_depth = 0;
};
