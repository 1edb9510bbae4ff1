// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Factories with C linkage, for programs that load the library with dlopen.

#include "database_client_export.h"

class DataBaseClient;
class ObjectFilter;
class ObjectProperties;

extern "C"
{
    /// Creates an unconnected client. The caller deletes it before the process exits.
    /// @throws std::bad_alloc
    DATABASE_CLIENT_API DataBaseClient* createDataBaseClient();
    /// Creates an empty document. The caller deletes it.
    /// @throws std::bad_alloc
    DATABASE_CLIENT_API ObjectProperties* createObjectProperties();
    /// Creates an empty filter. The caller deletes it.
    /// @throws std::bad_alloc
    DATABASE_CLIENT_API ObjectFilter* createObjectFilter();
}
