// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// Gives a test access to a private member, because an explicit instantiation may name it. Use it only for states that
/// the public functions cannot create.
template <typename Tag, typename Tag::Member Pointer>
struct RevealMember
{
    friend typename Tag::Member revealed(Tag /*tag*/) { return Pointer; }
};
