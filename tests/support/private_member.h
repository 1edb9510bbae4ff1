// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// Shows a private member to a test: an explicit instantiation may name it. For states that no caller can make.
template <typename Tag, typename Tag::Member Pointer>
struct RevealMember
{
    friend typename Tag::Member revealed(Tag /*tag*/) { return Pointer; }
};
