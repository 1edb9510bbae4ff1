// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row
{
    const char* name;
    const char* fullName;
    const char* database;
    const char* collection;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << '"' << row.fullName << '"';
}

class CollectionName : public testing::TestWithParam<Row>
{};

TEST_P(CollectionName, IsCutAtTheFirstDot)
{
    std::string database = "replaced";
    std::string collection = "replaced";

    parseOldCollectionName(GetParam().fullName, database, collection);

    EXPECT_EQ(database, GetParam().database);
    EXPECT_EQ(collection, GetParam().collection);
}

INSTANTIATE_TEST_SUITE_P(Names, CollectionName,
                         testing::Values(Row{"OneDot", "a.b", "a", "b"},
                                         Row{"FurtherDotsBelongToTheCollection", "a.b.c", "a", "b.c"},
                                         Row{"WithoutADotBothAreTheWholeName", "abc", "abc", "abc"},
                                         Row{"LeadingDotLeavesNoDatabase", ".x", "", "x"},
                                         Row{"TrailingDotLeavesNoCollection", "x.", "x", ""},
                                         Row{"OnlyADotLeavesNeither", ".", "", ""}, Row{"TwoDots", "..", "", "."},
                                         Row{"EmptyNameGivesTwoEmptyNames", "", "", ""}),
                         RowName());

TEST(CollectionNameInPlace, OutputMayBeTheNameItself)
{
    std::string name = "database.collection";
    std::string collection;
    parseOldCollectionName(name, name, collection);
    EXPECT_EQ(name, "database");
    EXPECT_EQ(collection, "collection");

    name = "database.collection";
    std::string database;
    parseOldCollectionName(name, database, name);
    EXPECT_EQ(database, "database");
    EXPECT_EQ(name, "collection");
}

} // namespace
