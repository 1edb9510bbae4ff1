// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The document and its cursor.
#include "example.h"

#include <dbc/access.h>
#include <dbc/scopes.h>

namespace {

void fill()
{
    section("fill");
    //! [fill]
    ObjectProperties person;
    person.setValueString("name", "Ada");
    person.beginGroup("born");
    person.setValueInt32("year", 1815);
    person.setValueString("place", "London");
    person.endGroup();
    person.setValueBool("alive", false);
    std::cout << text(person) << '\n';
    //! [fill]
}

void walk()
{
    section("walk");
    //! [walk]
    ObjectProperties document;
    document.beginGroup("a");        // 1: creates a and enters it
    document.setValueInt32("x", 1);  // 2: the cursor stays on a
    document.beginGroup("b");        // 3: creates a/b and enters it
    document.setValueInt32("/y", 2); // 4: from the root; the cursor stays on b
    document.endGroup();             // 5: to the parent, a
    document.beginGroup("/a/b/c/d"); // 6: creates c and d, enters d
    document.endGroup();             // 7: to the parent, c, not back to a
    document.beginGroup("");         // 8: to the root
    document.endGroup();             // 9: the root has no parent: nothing happens
    std::cout << text(document) << '\n';
    //! [walk]
}

void look()
{
    section("look");
    ObjectProperties document;
    document.setValueString("name", "Ada");
    document.setValueInt32("born/year", 1815);
    document.beginArray("children");
    document.endArray();
    //! [look]
    for (const std::string& key : document.childKeys())
        std::cout << "value " << key << '\n';
    for (const std::string& key : document.childGroups())
        std::cout << "group " << key << '\n';
    for (const std::string& key : document.childArrays())
        std::cout << "array " << key << '\n';
    //! [look]
}

void reading()
{
    section("reading");
    //! [reading]
    ObjectProperties document;
    std::cout << document.valueAsInt32("missing", 7) << '\n'; // returns the default, adds an Undefined
    std::cout << document.contains("missing") << ' ' << document.type("missing") << '\n';

    std::cout << document.contains("other") << '\n'; // contains() adds nothing
    std::cout << dbc::getOr(document, "other", 7) << '\n';
    std::cout << document.contains("other") << '\n';
    //! [reading]
}

void scopes()
{
    section("scopes");
    //! [scopes]
    ObjectProperties document;
    {
        const dbc::GroupScope born(document, "born");
        document.setValueInt32("year", 1815);
    } // moves the cursor back, also after an exception
    document.setValueString("name", "Ada");
    std::cout << text(document) << '\n';
    //! [scopes]
}

void combine()
{
    section("combine");
    //! [combine]
    ObjectProperties address;
    address.setValueString("city", "London");

    ObjectProperties person;
    person.setValueString("name", "Ada");
    person.include("address", address); // a deep copy of address becomes the group "address"
    std::cout << text(person) << '\n';

    ObjectProperties taken;
    person.exclude("address", taken); // moves the group out again
    std::cout << text(person) << ' ' << text(taken) << '\n';

    const ObjectProperties copy = person; // a deep copy; its cursor is at the root
    person.remove("name");
    std::cout << person.isEmpty() << ' ' << copy.isEmpty() << '\n';
    //! [combine]
}

} // namespace

int main()
{
    fill();
    walk();
    look();
    reading();
    scopes();
    combine();
}
