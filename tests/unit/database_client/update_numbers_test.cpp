// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/database_client_d.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct CommandRow
{
    const char* name;
    int number;
    bool known;
    const char* text;
};

void PrintTo(const CommandRow& row, std::ostream* out)
{
    *out << row.number;
}

class UpdateCommandNumber : public testing::TestWithParam<CommandRow>
{};

TEST_P(UpdateCommandNumber, MapsToItsOperator)
{
    const DataBaseClientPrivate client;
    std::string text = "replaced";

    EXPECT_EQ(client.stringCommand(static_cast<UpdateCommand>(GetParam().number), text), GetParam().known);

    EXPECT_EQ(text, GetParam().known ? GetParam().text : "replaced");
}

INSTANTIATE_TEST_SUITE_P(Numbers, UpdateCommandNumber,
                         testing::Values(CommandRow{"Undefined", 0, false, ""}, CommandRow{"Replace", 1, true, ""},
                                         CommandRow{"Rename", 2, true, "$rename"}, CommandRow{"Set", 3, true, "$set"},
                                         CommandRow{"Unset", 4, true, "$unset"},
                                         CommandRow{"AddToSet", 5, true, "$addToSet"},
                                         CommandRow{"Pop", 6, true, "$pop"}, CommandRow{"Pull", 7, true, "$pull"},
                                         CommandRow{"PullAll", 8, true, "$pullAll"},
                                         CommandRow{"Push", 9, true, "$push"}, CommandRow{"Ten", 10, false, ""},
                                         CommandRow{"Fifteen", 15, false, ""}),
                         RowName());

struct FlagRow
{
    const char* name;
    int number;
    bool known;
    mongoc_update_flags_t flag;
};

void PrintTo(const FlagRow& row, std::ostream* out)
{
    *out << row.number;
}

class UpdateFlagNumber : public testing::TestWithParam<FlagRow>
{};

TEST_P(UpdateFlagNumber, MapsToTheFlagOfTheDriver)
{
    const DataBaseClientPrivate client;
    mongoc_update_flags_t flag = MONGOC_UPDATE_NONE;

    EXPECT_EQ(client.toMongoUpdateFlag(static_cast<UpdateFlag>(GetParam().number), flag), GetParam().known);

    EXPECT_EQ(flag, GetParam().flag);
}

INSTANTIATE_TEST_SUITE_P(Numbers, UpdateFlagNumber,
                         testing::Values(FlagRow{"None", 0, true, MONGOC_UPDATE_NONE},
                                         FlagRow{"Upsert", 1, true, MONGOC_UPDATE_UPSERT},
                                         FlagRow{"MultiUpdate", 2, true, MONGOC_UPDATE_MULTI_UPDATE},
                                         FlagRow{"Three", 3, false, MONGOC_UPDATE_NONE}),
                         RowName());

} // namespace
