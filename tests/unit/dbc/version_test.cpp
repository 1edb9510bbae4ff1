// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/version.h"

#include <mongoc/mongoc.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Version, LibraryHasTheVersionOfItsHeaders)
{
    EXPECT_STREQ(dbc::libraryVersion(), DATABASE_CLIENT_VERSION);
    EXPECT_EQ(std::to_string(DATABASE_CLIENT_VERSION_MAJOR) + "." + std::to_string(DATABASE_CLIENT_VERSION_MINOR) +
                  "." + std::to_string(DATABASE_CLIENT_VERSION_PATCH),
              DATABASE_CLIENT_VERSION);
}

TEST(Version, DriverIsTheOneThatIsLoaded)
{
    EXPECT_STREQ(dbc::driverVersion(), mongoc_get_version());
}

} // namespace
