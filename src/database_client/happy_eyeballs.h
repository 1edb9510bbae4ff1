#pragma once

#include "database_client/mongoc_handles.h"

#include <netdb.h>

#include <cstdint>

/// Connects to whichever of the addresses, linked by ai_next, answers first (RFC 8305): each has 250 milliseconds
/// before the next one is tried beside it. A single address is not waited for; who waits for the socket finds what
/// became of it, as with the driver's own.
/// @param end  when to give up, in the driver's monotonic microseconds
/// @return null when every address refused, or none answered until @p end
SocketHandle connectToFirst(const addrinfo* addresses, std::int64_t end) noexcept;
