// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/options_bson.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using dbc::ReadPreference;

mongoc_read_mode_t modeOf(ReadPreference preference)
{
    return mongoc_read_prefs_get_mode(dbc::readPreference(preference).get());
}

TEST(ReadPreferenceOption, IsTheModeOfTheDriverWithTheSameName)
{
    EXPECT_EQ(modeOf(ReadPreference::Primary), MONGOC_READ_PRIMARY);
    EXPECT_EQ(modeOf(ReadPreference::PrimaryPreferred), MONGOC_READ_PRIMARY_PREFERRED);
    EXPECT_EQ(modeOf(ReadPreference::Secondary), MONGOC_READ_SECONDARY);
    EXPECT_EQ(modeOf(ReadPreference::SecondaryPreferred), MONGOC_READ_SECONDARY_PREFERRED);
    EXPECT_EQ(modeOf(ReadPreference::Nearest), MONGOC_READ_NEAREST);
}

TEST(ReadPreferenceOption, IsNullIfItIsNotSet)
{
    EXPECT_EQ(dbc::readPreference(std::nullopt), nullptr);
}

} // namespace
