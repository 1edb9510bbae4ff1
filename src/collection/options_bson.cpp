// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/options_bson.h"

#include "collection/bson_value.h"
#include "collection/names.h"
#include "dbc/bulk.h"
#include "dbc/options.h"
#include "dbc/value.h"
#include "dbc/value_type.h"
#include "driver/mongoc_handles.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dbc {

bool isSet(const Value& value) { return value.type() != Type::Object || !value.empty(); }

DriverOptions& DriverOptions::add(const char* key, const Value& value)
{
    if (isSet(value))
        appendValue(m_bson.get(), key, value);
    return *this;
}

DriverOptions& DriverOptions::add(const char* key, const std::vector<Value>& values)
{
    if (values.empty())
        return *this;
    OwnedBson array;
    std::size_t index = 0;
    for (const Value& value : values)
        appendValue(array.get(), std::to_string(index++).c_str(), value);
    BSON_APPEND_ARRAY(m_bson.get(), key, array.get());
    return *this;
}

DriverOptions& DriverOptions::add(const std::optional<WriteConcern>& writeConcern)
{
    if (!writeConcern)
        return *this;
    OwnedBson concern;
    checkNoZeroByte(writeConcern->tag, "Write concern tag");
    if (!writeConcern->tag.empty())
        BSON_APPEND_UTF8(concern.get(), "w", writeConcern->tag.c_str());
    else if (writeConcern->nodes)
        BSON_APPEND_INT32(concern.get(), "w", *writeConcern->nodes);
    if (writeConcern->journal)
        BSON_APPEND_BOOL(concern.get(), "j", *writeConcern->journal);
    if (writeConcern->timeout)
        BSON_APPEND_INT64(concern.get(), "wtimeout", writeConcern->timeout->count());
    BSON_APPEND_DOCUMENT(m_bson.get(), "writeConcern", concern.get());
    return *this;
}

DriverOptions& DriverOptions::add(const BulkUpdateOptions& options)
{
    return addFlag("upsert", options.upsert)
        .add("arrayFilters", options.arrayFilters)
        .add("hint", options.hint)
        .add("collation", options.collation);
}

DriverOptions& DriverOptions::add(const BulkReplaceOptions& options)
{
    return addFlag("upsert", options.upsert).add("hint", options.hint).add("collation", options.collation);
}

DriverOptions& DriverOptions::add(const BulkRemoveOptions& options)
{
    return add("hint", options.hint).add("collation", options.collation);
}

DriverOptions& DriverOptions::add(const char* key, const Sort& sort)
{
    if (sort.empty())
        return *this;
    OwnedBson fields;
    for (const SortField& field : sort)
    {
        checkNoZeroByte(field.field, "Field name");
        bson_append_int32(fields.get(), field.field.c_str(), static_cast<int>(field.field.size()),
                          static_cast<int>(field.order));
    }
    BSON_APPEND_DOCUMENT(m_bson.get(), key, fields.get());
    return *this;
}

DriverOptions& DriverOptions::addNumber(const char* key, std::int64_t number)
{
    if (number != 0)
        BSON_APPEND_INT64(m_bson.get(), key, number);
    return *this;
}

DriverOptions& DriverOptions::addOrder(bool ordered)
{
    BSON_APPEND_BOOL(m_bson.get(), "ordered", ordered);
    return *this;
}

DriverOptions& DriverOptions::addFlag(const char* key, bool value)
{
    if (value)
        BSON_APPEND_BOOL(m_bson.get(), key, true);
    return *this;
}

ReadPreferenceHandle readPreference(const std::optional<ReadPreference>& preference)
{
    if (!preference)
        return nullptr;
    const auto made = [](mongoc_read_mode_t mode) { return ReadPreferenceHandle(mongoc_read_prefs_new(mode)); };
    switch (*preference)
    {
    case ReadPreference::Primary:
        return made(MONGOC_READ_PRIMARY);
    case ReadPreference::PrimaryPreferred:
        return made(MONGOC_READ_PRIMARY_PREFERRED);
    case ReadPreference::Secondary:
        return made(MONGOC_READ_SECONDARY);
    case ReadPreference::SecondaryPreferred:
        return made(MONGOC_READ_SECONDARY_PREFERRED);
    case ReadPreference::Nearest:
        return made(MONGOC_READ_NEAREST);
    }
    return nullptr;
}

} // namespace dbc
