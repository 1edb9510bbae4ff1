// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Bytes from outside as BSON and as JSON: a value that was read is written, read again, and stays the same.

#include "dbc/value.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

void requireJsonRoundTrip(const dbc::Value& value)
{
    std::string canonical;
    try
    {
        canonical = value.toJson(dbc::JsonFormat::Canonical);
    }
    catch (const std::invalid_argument& /*error*/)
    {
        return; // too many levels, or no UTF-8
    }
    dbc::Value again;
    try
    {
        again = dbc::Value::fromJson(canonical);
    }
    catch (const dbc::FormatError& /*error*/)
    {
        return; // a key such as "$oid" means something else to a reader
    }
    std::string second;
    try
    {
        second = again.toJson(dbc::JsonFormat::Canonical);
    }
    catch (const std::invalid_argument& /*error*/)
    {
        return;
    }
    require(second == canonical || canonical.find('$') != std::string::npos, "JSON stays the same");
}

void requireRoundTrip(const dbc::Value& value)
{
    const std::vector<std::uint8_t> bytes = value.toBson();
    const dbc::Value again = dbc::Value::fromBson(bytes.data(), bytes.size());
    require(again.compare(value) == 0, "a value that was written is read as the same value");
    require(again.toBson() == bytes, "its bytes stay the same");
    dbc::Value copied;
    copied = value;
    require(copied.toBson() == bytes, "a copy has the same bytes");

    std::vector<dbc::LossAt> losses;
    const ObjectProperties document = value.toProperties(losses);
    const dbc::Value back = dbc::Value::fromProperties(document);
    require(dbc::Value::fromProperties(back.toProperties(losses)) == back, "what a document holds stays the same");
    requireJsonRoundTrip(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try
    {
        requireRoundTrip(dbc::Value::fromBson(data, size));
    }
    catch (const dbc::FormatError& error)
    {
        require(error.position() <= size, "the place of a fault is within the bytes");
    }
    try
    {
        const dbc::Value value = dbc::Value::fromJson({reinterpret_cast<const char*>(data), size});
        if (value.isObject())
            requireRoundTrip(value);
        else
            requireJsonRoundTrip(value);
    }
    catch (const dbc::FormatError& error)
    {
        require(error.position() <= size, "the place of a fault is within the text");
    }
    return 0;
}
