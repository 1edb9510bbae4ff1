#pragma once

#include <bson/bson.h>

namespace test_support {

/// A document in automatic storage.
class OwnedBson
{
public:
    OwnedBson() = default;
    ~OwnedBson() { bson_destroy(&m_bson); }
    OwnedBson(const OwnedBson&) = delete;
    OwnedBson& operator=(const OwnedBson&) = delete;

    bson_t* get() noexcept { return &m_bson; }
    const bson_t* get() const noexcept { return &m_bson; }

private:
    bson_t m_bson = BSON_INITIALIZER; // holds nothing yet: a function that initialises it again causes no leak
};

} // namespace test_support
