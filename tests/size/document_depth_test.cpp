// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_properties.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>

namespace {

const int depth = many();

ObjectProperties nested()
{
    ObjectProperties document;
    for (int level = 0; level < depth; ++level)
    {
        if (level % 2)
            document.beginArray("a");
        else
            document.beginGroup("g");
    }
    document.setValueInt32("v", 1);
    return document;
}

// Returns the number of levels. Moves the cursor to the innermost level and back to the root.
int depthOf(const ObjectProperties& document)
{
    int levels = 0;
    document.beginGroup("");
    while (document.beginObject(0))
        ++levels;
    for (int level = 0; level < levels; ++level)
        document.endObject();
    EXPECT_EQ(document.group(), "");
    return levels;
}

TEST(DeepDocument, IsWrittenAndReadWithTheCursor)
{
    runOnSmallStack([] { EXPECT_EQ(depthOf(nested()), depth + 1); });
}

TEST(DeepDocument, IsCopiedMovedAndAssigned)
{
    runOnSmallStack([] {
        ObjectProperties document = nested();
        ObjectProperties copy(document);
        copy = document;
        const ObjectProperties moved(std::move(document));
        document = moved;
        EXPECT_EQ(depthOf(document), depth + 1);
        EXPECT_EQ(depthOf(copy), depth + 1);
    });
}

TEST(DeepDocument, IsIncludedAndExcluded)
{
    runOnSmallStack([] {
        const ObjectProperties document = nested();
        ObjectProperties outer;
        outer.include("a/b/c", document);
        outer.include("a/b/c", outer);
        EXPECT_EQ(depthOf(outer), depth + 7);
        ObjectProperties cut;
        outer.beginGroup("a/b/c/a");
        outer.exclude("/a/b", cut);
        EXPECT_EQ(outer.group(), "");
        EXPECT_EQ(depthOf(cut), depth + 5);
        cut.exclude("c", cut);
        EXPECT_EQ(depthOf(cut), depth + 4);
    });
}

TEST(DeepDocument, IsFreedWhileTheCursorIsAtTheLastLevel)
{
    runOnSmallStack([] {
        ObjectProperties document = nested();
        while (document.beginObject(0))
        {}
        document.setValueInt32("/", 1);
        EXPECT_EQ(document.key(), "v");
    });
}

} // namespace
