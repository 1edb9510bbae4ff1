#pragma once

/// @file
/// Marks what the library exports. Everything else is compiled with hidden visibility.

/// Goes before the name of a class or function that programs may use.
#define DATABASE_CLIENT_API __attribute__((visibility("default")))
/// Goes before a private member function, which no program can call: it may change in every version.
#define DATABASE_CLIENT_LOCAL __attribute__((visibility("hidden")))
