// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "environment.h"

#include <string>

/// The server that scripts/with-server put into the environment.
inline std::string serverUri()
{
    return test_support::requiredVariable("DATABASE_CLIENT_TEST_URI");
}
