// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <mongoc/mongoc.h>

#include <memory>
#include <string>

struct DestroyUri
{
    void operator()(mongoc_uri_t* uri) const noexcept { mongoc_uri_destroy(uri); }
};
using UriHandle = std::unique_ptr<mongoc_uri_t, DestroyUri>;

/// The format of a connection string, for error messages.
extern const char* const uriForm;

/// The result of parsing a connection string with the driver.
struct ParsedUri
{
    UriHandle uri;     ///< null if the connection string is invalid
    std::string error; ///< the reason; empty if the driver's message might contain the password
};

ParsedUri parseUri(const std::string& text);
