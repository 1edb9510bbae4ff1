#pragma once

#include "dbc/bulk.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <bson/bson.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace dbc {

/// Whether a value of an options struct is set: whether it is anything but the empty object of its default.
bool isSet(const Value& value);

/// Options of a driver call under construction. What is not set leaves no field.
class DriverOptions
{
public:
    const bson_t* get() const noexcept { return m_bson.get(); }

    DriverOptions& add(const char* key, const Value& value);
    /// Leaves no field if @p values is empty.
    DriverOptions& add(const char* key, const std::vector<Value>& values);
    DriverOptions& add(const std::optional<WriteConcern>& writeConcern);
    DriverOptions& add(const BulkUpdateOptions& options);
    DriverOptions& add(const BulkReplaceOptions& options);
    DriverOptions& add(const BulkRemoveOptions& options);
    /// Leaves no field if the list is empty.
    DriverOptions& add(const char* key, const Sort& sort);
    /// Leaves no field if @p number is 0.
    DriverOptions& addNumber(const char* key, std::int64_t number);
    DriverOptions& addOrder(bool ordered);
    /// Leaves no field if @p value is false.
    DriverOptions& addFlag(const char* key, bool value);

    bson_t* bson() noexcept { return m_bson.get(); }

private:
    OwnedBson m_bson;
};

/// For a driver call; null stands for the preference of the connection string.
ReadPreferenceHandle readPreference(const std::optional<ReadPreference>& preference);

} // namespace dbc
