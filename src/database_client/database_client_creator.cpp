// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "factories.h"

DataBaseClient* createDataBaseClient() { return new DataBaseClient; }
