// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/build.h"

namespace test_support {

/// Returns an object with a field of every BSON type, with equal keys, and with strings, keys and bytes in every form
/// in which a Value stores them.
inline dbc::Value everyType()
{
    const dbc::ObjectId id{"507f1f77bcf86cd799439011"};
    return {{"double", -1.5},
            {"string", "in place"},
            {"string of fourteen", "fourteen bytes"},
            {"string of fifteen", "fifteen  bytes."},
            {"empty string", ""},
            {"string with a zero byte", std::string("a\0b", 3)},
            {"object", {{"inner", {{"deep", 1}}}, {"empty", {}}}},
            {"array", dbc::array({1, "two", dbc::array({3}), {{"four", 4}}, dbc::array()})},
            {"long array", std::vector<int>(12, 7)},
            {"binary", dbc::Bytes{1, 2, 3}},
            {"binary of subtype 2", dbc::Binary{{4, 5}, 2}},
            {"binary of subtype 4", dbc::Binary{dbc::Bytes(16, 6), 4}},
            {"empty binary", dbc::Bytes()},
            {"empty binary of subtype 2", dbc::Binary{{}, 2}},
            {"undefined", dbc::Value::undefined()},
            {"object id", id},
            {"true", true},
            {"false", false},
            {"time", dbc::timeFromMilliseconds(-62135596800000)},
            {"null", nullptr},
            {"regular expression", dbc::RegularExpression{"^a.*b$", "im"}},
            {"empty regular expression", dbc::RegularExpression{"", ""}},
            {"pointer", dbc::DbPointer{"shop.orders", id}},
            {"code", dbc::Code{"function() { return 1; }"}},
            {"symbol", dbc::Symbol{"a symbol that is not in place"}},
            {"code with scope", dbc::CodeWithScope{"f()", {{"x", 1}, {"y", {{"z", "deep"}}}}}},
            {"code with an empty scope", dbc::CodeWithScope{"", {}}},
            {"int32", -2147483647 - 1},
            {"timestamp", dbc::Timestamp{4000000000U, 4294967295U}},
            {"int64", 9223372036854775807L},
            {"decimal", dbc::Decimal128::parse("-1.2345678901234567890123456789E-50")},
            {"min key", dbc::Value::minKey()},
            {"max key", dbc::Value::maxKey()},
            {"twice", 1},
            {"twice", "second"},
            {"", "empty key"},
            {"a key that is too long to be stored in place", "and a string that is too long as well"}};
}

} // namespace test_support
