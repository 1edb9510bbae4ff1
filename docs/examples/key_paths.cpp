// Key paths.
#include "example.h"

#include <dbc/build.h>

namespace {

void paths()
{
    section("paths");
    //! [paths]
    ObjectProperties document;
    document.setValueInt32("a/b/c", 1);     // makes the groups a and b
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
    document.setValueInt32("size/width", 3); // a value on the way gets a child and stays a value
    std::cout << document.type("size") << ' ' << document.valueAsInt32("size/width", 0) << '\n';
    std::cout << text(document) << '\n'; // which is why the child is not in the document that is sent

    document.setValueString("size", "small"); // and setting a value takes all children away
    std::cout << document.contains("size/width") << '\n';
    //! [collision]
}

void literal()
{
    section("literal");
    //! [literal]
    ObjectProperties document;
    document.setValueString("e.mail", "ada@example.org");                // "." is an ordinary character
    document.root()->createSingleProperty("and/or")->setValueBool(true); // a key that holds a "/"
    document.include("more", dbc::document({{"either/or", false}}));     // and with nested braces
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
