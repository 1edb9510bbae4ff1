#pragma once

#include <mongoc/mongoc.h>

#include <memory>

namespace test_support {

template <auto Destroy>
struct DestroyWith
{
    template <typename Handle>
    void operator()(Handle* handle) const noexcept
    {
        Destroy(handle);
    }
};

using DriverUri = std::unique_ptr<mongoc_uri_t, DestroyWith<mongoc_uri_destroy>>;
using DriverClient = std::unique_ptr<mongoc_client_t, DestroyWith<mongoc_client_destroy>>;
using DriverDatabase = std::unique_ptr<mongoc_database_t, DestroyWith<mongoc_database_destroy>>;
using DriverCollection = std::unique_ptr<mongoc_collection_t, DestroyWith<mongoc_collection_destroy>>;
using DriverCursor = std::unique_ptr<mongoc_cursor_t, DestroyWith<mongoc_cursor_destroy>>;
using DriverText = std::unique_ptr<char, DestroyWith<bson_free>>;
using DriverTexts = std::unique_ptr<char*, DestroyWith<bson_strfreev>>;

} // namespace test_support
