// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "object_properties.h"

#include <cstdlib>
#include <list>
#include <string>

/// The server that scripts/with-server put into the environment; ends the program where there is none.
inline std::string serverUri()
{
    const char* const uri = std::getenv("DATABASE_CLIENT_TEST_URI");
    if (!uri)
        std::abort();
    return uri;
}

inline void deleteAll(std::list<ObjectProperties*>& results)
{
    for (const ObjectProperties* const document : results)
        delete document;
    results.clear();
}
