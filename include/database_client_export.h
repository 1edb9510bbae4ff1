#pragma once

/// @file
/// Marks what the library exports. Everything else is compiled with hidden visibility.

#define DATABASE_CLIENT_API __attribute__((visibility("default")))
