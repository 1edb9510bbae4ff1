#pragma once

#include "database_client/mongoc_handles.h"

/// The TLS options of a connection string. The texts belong to @p uri.
mongoc_ssl_opt_t tlsOptionsOf(const mongoc_uri_t& uri) noexcept;

/// A client of the driver's whose connections let no reply through that the driver could not survive: checkedStream().
/// Compression is not asked for, whatever @p uri says of it: what is in a compressed reply cannot be checked.
/// @return null, and the reason in @p error, when the driver makes none of the connection string
ClientHandle newCheckedClient(mongoc_uri_t& uri, bson_error_t& error);
