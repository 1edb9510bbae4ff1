// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <memory>

/// Handles for the BSON objects of the driver. Only this file calls their destroy functions.
template <auto Destroy>
struct DestroyWith
{
    template <typename Handle>
    void operator()(Handle* handle) const noexcept
    {
        Destroy(handle);
    }
};

// bson_t has an alignment attribute, which a template argument would drop.
struct DestroyBson
{
    using pointer = bson_t*;
    void operator()(bson_t* bson) const noexcept { bson_destroy(bson); }
};

using BsonPointer = std::unique_ptr<void, DestroyBson>;
using BsonText = std::unique_ptr<char, DestroyWith<bson_free>>;
/// Ends with a null pointer.
using BsonTextList = std::unique_ptr<char*, DestroyWith<bson_strfreev>>;

/// A document in automatic storage. It needs no memory until it is filled, so a converter may initialize it again.
class OwnedBson
{
public:
    OwnedBson() = default;
    OwnedBson(const OwnedBson&) = delete;
    OwnedBson& operator=(const OwnedBson&) = delete;
    ~OwnedBson() { bson_destroy(&m_bson); }

    bson_t* get() noexcept { return &m_bson; }
    const bson_t* get() const noexcept { return &m_bson; }

private:
    bson_t m_bson = BSON_INITIALIZER;
};
