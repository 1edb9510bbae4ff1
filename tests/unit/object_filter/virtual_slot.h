// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Place of a virtual operation in its class's table, from 0: on x86-64 a pointer to it holds 1 + 8 * slot.
template <typename Member>
std::size_t virtualSlot(Member member)
{
    std::uintptr_t word = 0;
    static_assert(sizeof member == 2 * sizeof word, "a pointer to a member is an address and an adjustment");
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void*);
}
