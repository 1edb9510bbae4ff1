// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/bson_value.h"

#include "collection/value_access.h"
#include "database_client/sendable.h"
#include "dbc/value.h"
#include "dbc/value_type.h"
#include "driver/bson_handles.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace dbc {

void appendValue(bson_t* bson, const char* key, const Value& value)
{
    Value wrapped;
    wrapped.append(key, value);
    const std::vector<std::uint8_t> bytes = wrapped.toBson();
    bson_t view;
    if (!bson_init_static(&view, bytes.data(), bytes.size()) || !canBeSent(&view))
        throw std::invalid_argument("Bad options");
    bson_concat(bson, &view);
}

Value valueAt(const bson_iter_t& iter)
{
    if (BSON_ITER_HOLDS_OID(&iter))
        return valueFrom(*bson_iter_oid(&iter));
    OwnedBson wrapped;
    bson_iter_t place = iter;
    if (!bson_append_iter(wrapped.get(), "", 0, &place))
        throw FormatError("BSON: a value whose length is wrong", bson_iter_offset(&place));
    Value document = valueFrom(wrapped.get());
    return std::move(document.at(std::size_t{0}));
}

Value valueFrom(const bson_t* bson) { return Value::fromBson(bson_get_data(bson), bson->len); }

Value valueFrom(const bson_oid_t& id)
{
    Value value = ValueAccess::makeValue(Type::ObjectId);
    ValueAccess::setObjectId(value, id.bytes);
    return value;
}

} // namespace dbc
