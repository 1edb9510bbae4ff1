#pragma once

#include <mongoc/mongoc.h>

#include <memory>
#include <string>

struct DestroyUri
{
    void operator()(mongoc_uri_t* uri) const noexcept { mongoc_uri_destroy(uri); }
};
using UriHandle = std::unique_ptr<mongoc_uri_t, DestroyUri>;

/// What a connection string looks like, for messages about one that cannot be read.
extern const char* const uriForm;

/// A connection string as the driver reads it.
struct ParsedUri
{
    UriHandle uri;     ///< null if the string is not a connection string
    std::string error; ///< why; empty if the driver's words might quote the password
};

ParsedUri parseUri(const std::string& text);
