// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "wire_gateway.h"

#include <string>

namespace test_support {

/// Host and port of the gateway, as a connection string has them.
inline std::string hostOf(const WireGateway& gateway)
{
    return "127.0.0.1:" + std::to_string(gateway.port());
}

/// Makes the server behind the gateway the primary of a replica set "set" that has another member, until clearFaults().
inline void pretendSet(WireGateway& gateway, const std::string& otherMember)
{
    const std::string greeting = R"({"ok": 1, "ismaster": true, "setName": "set", "maxWireVersion": 17,
        "maxBsonObjectSize": 16777216, "maxMessageSizeBytes": 48000000, "maxWriteBatchSize": 100000, "hosts": [")" +
                                 hostOf(gateway) + R"(", ")" + otherMember + R"("], "me": ")" + hostOf(gateway) + "\"}";
    for (const char* const command : {"isMaster", "hello"})
        gateway.inject(Fault::replaceReply(greeting).onCommand(command).andLater());
}

} // namespace test_support
