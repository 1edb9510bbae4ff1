#pragma once

#include "database_client/mongoc_handles.h"

/// A stream that passes everything on to @p inner and fails, as a broken connection does, before the driver has the
/// whole of a reply that it could not read (ReplyCheck).
/// @param usesScram  whether the client authenticates by SCRAM, if it does
StreamHandle checkedStream(StreamHandle inner, bool usesScram) noexcept;
