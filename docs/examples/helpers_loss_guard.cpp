// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Fields that an ObjectProperties cannot hold. Needs no server.
#include "example.h"

#include <dbc/loss_guard.h>

namespace {

class OwnedBson
{
public:
    OwnedBson() = default;
    OwnedBson(const OwnedBson&) = delete;
    OwnedBson& operator=(const OwnedBson&) = delete;
    ~OwnedBson() { bson_destroy(&m_bson); }
    bson_t* get() { return &m_bson; }

private:
    bson_t m_bson = BSON_INITIALIZER;
};

void named()
{
    section("named");
    //! [named]
    OwnedBson bson; // a bson_t that is destroyed at the end of its block
    BSON_APPEND_UTF8(bson.get(), "name", "Lisbon");
    BSON_APPEND_NULL(bson.get(), "mayor");
    BSON_APPEND_INT32(bson.get(), "km/h", 50);
    for (const dbc::LossAt& loss : dbc::findLosses(*bson.get()))
        std::cout << loss.path << ": " << dbc::nameOf(loss.loss) << '\n';

    ObjectProperties document;
    BsonToProperties::convert(bson.get(), &document);
    std::cout << text(document) << '\n';
    //! [named]
}

} // namespace

int main()
{
    named();
}
