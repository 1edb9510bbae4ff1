// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test_support {

/// A client that is connected to the test server through the gateway, and a new database.
class ConnectedClient : public testing::Test
{
public:
    ConnectedClient() { m_client.connect(TestServer::instance().uri()); }

    DataBaseClient& client() { return m_client; }
    ScratchDatabase& scratch() { return m_scratch; }
    const std::string& database() const { return m_scratch.name(); }
    WireGateway& gateway() { return TestServer::instance().gateway(); }

    /// Returns the only command with this name that was sent, or the number of commands.
    std::string sent(const std::string& name)
    {
        const std::vector<RecordedCommand> commands = gateway().commands(name);
        return commands.size() == 1 ? commands[0].json() : std::to_string(commands.size()) + " commands";
    }

    /// Replies to the next command with this name instead of the server.
    void reply(const std::string& name, const std::string& reply)
    {
        gateway().inject(Fault::answer(reply).onCommand(name));
    }

    static ObjectProperties number(const std::string& key, int value)
    {
        ObjectProperties document;
        document.setValueInt32(key, value);
        return document;
    }

    /// Returns a pipeline of one stage.
    template <typename Fill>
    static ObjectProperties pipeline(Fill fillStage)
    {
        ObjectProperties document;
        document.beginArray("pipeline");
        document.beginGroup("0");
        fillStage(document);
        return document;
    }

private:
    ScratchDatabase m_scratch;
    DataBaseClient m_client;
};

} // namespace test_support
