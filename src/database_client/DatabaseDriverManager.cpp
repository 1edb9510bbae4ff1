// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "DatabaseDriverManager.h"

#include <mongoc/mongoc.h>

#include <memory>

DatabaseDriverManager::DatabaseDriverManager() { mongoc_init(); }
DatabaseDriverManager::~DatabaseDriverManager() { mongoc_cleanup(); }

void DatabaseDriverManager::init()
{
    static std::shared_ptr<DatabaseDriverManager> holder;
    if (!holder)
        holder = std::make_shared<DatabaseDriverManager>();
}
