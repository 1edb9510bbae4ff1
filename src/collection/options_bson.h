// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/bulk.h"
#include "dbc/options.h"
#include "dbc/value.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <bson/bson.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace dbc {

/// True if an option is set. The default, the empty object, means that it is not set.
bool isSet(const Value& value);

/// Builds the options of a driver call. Options that are not set are left out.
class DriverOptions
{
public:
    const bson_t* get() const noexcept { return m_bson.get(); }

    DriverOptions& add(const char* key, const Value& value);
    /// Left out if @p values is empty.
    DriverOptions& add(const char* key, const std::vector<Value>& values);
    DriverOptions& add(const std::optional<WriteConcern>& writeConcern);
    DriverOptions& add(const BulkUpdateOptions& options);
    DriverOptions& add(const BulkReplaceOptions& options);
    DriverOptions& add(const BulkRemoveOptions& options);
    /// Left out if @p sort is empty.
    DriverOptions& add(const char* key, const Sort& sort);
    /// Left out if @p number is 0.
    DriverOptions& addNumber(const char* key, std::int64_t number);
    DriverOptions& addOrder(bool ordered);
    /// Left out if @p value is false.
    DriverOptions& addFlag(const char* key, bool value);

    bson_t* bson() noexcept { return m_bson.get(); }

private:
    OwnedBson m_bson;
};

/// Converts a read preference for the driver. Returns null if it is not set: the driver then uses the connection
/// string.
ReadPreferenceHandle readPreference(const std::optional<ReadPreference>& preference);

} // namespace dbc
