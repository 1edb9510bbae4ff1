// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "property.h"

/// Shows a private member to a test: an explicit instantiation may name it. For states that no caller can make.
template <typename Tag, typename Tag::Member Pointer>
struct RevealMember
{
    friend typename Tag::Member revealed(Tag /*tag*/) { return Pointer; }
};

/// The stored type of an item.
struct StoredKind
{
    using Member = PropertyType Property::PropertyItem::*;
    friend Member revealed(StoredKind);
};
template struct RevealMember<StoredKind, &Property::PropertyItem::m_type>;

/// The item of a node.
struct ItemOfNode
{
    using Member = Property::PropertyItem Property::*;
    friend Member revealed(ItemOfNode);
};
template struct RevealMember<ItemOfNode, &Property::m_item>;

inline PropertyType& storedKind(Property::PropertyItem& item)
{
    return item.*revealed(StoredKind());
}

inline Property::PropertyItem& itemOf(Property& node)
{
    return node.*revealed(ItemOfNode());
}
