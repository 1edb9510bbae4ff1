// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Key paths.
#include "example.h"

#include <dbc/build.h>

namespace {

void paths()
{
    section("paths");
    //! [paths]
    ObjectProperties document;
    document.setValueInt32("a/b/c", 1);     // creates the groups a and b
    document.setValueInt32("//a///b/d", 2); // empty segments are ignored
    document.beginGroup("a");
    document.setValueInt32("b/e", 3);  // below the cursor: a/b/e
    document.setValueInt32("/b/e", 4); // from the root: b/e
    std::cout << text(document) << '\n';
    //! [paths]
}

void collision()
{
    section("collision");
    //! [collision]
    ObjectProperties document;
    document.setValueString("size", "large");
    document.setValueInt32("size/width", 3); // the value gets a child and stays a value
    std::cout << document.type("size") << ' ' << document.valueAsInt32("size/width", 0) << '\n';
    std::cout << text(document) << '\n'; // children of a value are not written

    document.setValueString("size", "small"); // setting a value removes all children
    std::cout << document.contains("size/width") << '\n';
    //! [collision]
}

void literal()
{
    section("literal");
    //! [literal]
    ObjectProperties document;
    document.setValueString("e.mail", "ada@example.org");                // "." is an ordinary character
    document.root()->createSingleProperty("and/or")->setValueBool(true); // a key with "/"
    document.include("more", dbc::document({{"either/or", false}}));     // the same with nested braces
    std::cout << text(document) << '\n';
    //! [literal]
}

} // namespace

int main()
{
    paths();
    collision();
    literal();
}
