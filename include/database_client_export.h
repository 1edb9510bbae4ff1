// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Macros for the visibility of symbols. The library is compiled with hidden visibility.

/// Exports a class or function. Goes before its name.
#define DATABASE_CLIENT_API __attribute__((visibility("default")))
/// Hides a private member function of an exported class. Programs cannot call it, so it may change in every version.
#define DATABASE_CLIENT_LOCAL __attribute__((visibility("hidden")))
