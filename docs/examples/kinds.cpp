// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Types of values.
#include "example.h"

#include <json_to_properties.h>

namespace {

void every()
{
    section("every");
    //! [every]
    ObjectProperties document;
    document.setValueString("string", "text");
    document.setValueBool("bool", true);
    document.setValueInt32("int32", 1);
    document.setValueInt64("int64", 1L << 40);
    document.setValueDouble("double", 0.5);
    document.setValueTime("time", 1500000000000LL); // milliseconds: 2017-07-14T02:40:00Z
    document.setValueId("id", "507f1f77bcf86cd799439011");
    document.setValueBinary("binary", {1, 2, 255});
    document.setValueRegex("regex", "^A", "i");
    for (const std::string& key : document.childKeys())
        std::cout << key << ' ' << document.type(key) << '\n';
    std::cout << text(document) << '\n';
    //! [every]
}

void exact()
{
    section("exact");
    //! [exact]
    ObjectProperties document;
    document.setValueInt("n", 5); // Int is the same type as Int32; LongLong is the same as Int64
    std::cout << document.valueAsInt32("n", -1) << ' ' << document.valueAsInt64("n", -1) << '\n';
    //! [exact]
}

void losses()
{
    section("losses");
    //! [losses]
    ObjectProperties document;
    JsonToProperties::convert(R"({"a": null, "b": {"$undefined": true}, "c": 1})", &document);
    std::cout << text(document) << '\n'; // a document cannot hold null and undefined

    document.setValueBinary("bytes", {}); // the key exists, but the field is not written
    document.setValueString("cut", std::string("ab\0cd", 5));
    std::cout << document.contains("bytes") << ' ' << text(document) << '\n';
    //! [losses]
}

} // namespace

int main()
{
    every();
    exact();
    losses();
}
