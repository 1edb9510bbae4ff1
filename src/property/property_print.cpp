// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"

#include "property/nesting_stack.h"

#include <cstdio>

namespace {

void printValue(Property& node)
{
    switch (static_cast<PropertyType>(node.type()))
    {
    case Undefined:
        std::fputs("<UNDEFINED>", stdout);
        break;
    case String:
    case Id:
        std::printf("\"%s\"", node.textView());
        break;
    case Bool:
        std::fputs(node.currentValueAsBool(false) ? "true" : "false", stdout);
        break;
    case Int32:
        std::printf("%d", node.currentValueAsInt32(0));
        break;
    case Int64:
        std::printf("%lld", static_cast<long long>(node.currentValueAsInt64(0)));
        break;
    case Double:
        std::printf("%e", node.currentValueAsDouble(0));
        break;
    case Time:
        std::printf("%lld", static_cast<long long>(node.currentValueAsTime(0)));
        break;
    case Binary:
        std::putchar('"');
        for (const unsigned char byte : node.bytesView())
            std::printf("%hu", static_cast<unsigned short>(byte));
        std::putchar('"');
        break;
    case Regex:
        std::printf("\"%s\" with options \"%s\"", node.patternView().c_str(), node.optionsView().c_str());
        break;
    case None:
    case Group:
    case Array:
        break;
    }
}

} // namespace

void Property::print()
{
    std::fputs("{\n", stdout);
    print(this, 1);
    std::fputs("}\n", stdout);
}

void Property::print(Property* node, int level)
{
    struct Level
    {
        Children::const_iterator next;
        Children::const_iterator end;
        const char* closing;
    };
    NestingStack<Level> open;
    open.push(node->begin(), node->end(), "");
    for (;;)
    {
        Level& innermost = open.top();
        if (innermost.next == innermost.end)
        {
            const char* closing = innermost.closing;
            open.pop();
            if (open.empty())
                return;
            printJustify(--level);
            // The comma also follows the last element: programs that parse this output depend on it.
            std::printf("%s,\n", closing);
            continue;
        }
        Property& child = *(innermost.next++)->second;
        printJustify(level);
        if (child.isGroup() || child.isArray())
        {
            // Indented twice: programs that parse this output depend on it.
            printJustify(level);
            std::printf("\"%s\": %s\n", child.keyView().c_str(), child.isGroup() ? "{" : "[");
            open.push(child.begin(), child.end(), child.isGroup() ? "}" : "]");
            ++level;
            continue;
        }
        std::printf("\"%s\": ", child.keyView().c_str());
        printValue(child);
        std::fputs(",\n", stdout);
    }
}

void Property::printJustify(int level) const
{
    for (long spaces = 3L * level; spaces > 0; --spaces)
        std::putchar(' ');
}
