// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "object_properties.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

namespace {

// Replaces the operations that the overloads are built on, and keeps what reached them.
class RecordingClient : public DataBaseClient
{
public:
    using DataBaseClient::connect;
    using DataBaseClient::read;
    using DataBaseClient::remove;
    using DataBaseClient::write;

    void connect(const std::string& uri) override { calls.push_back("connect " + uri); }

    void write(const std::string& database, const std::string& collection, const ObjectProperties& document,
               std::string& id) override
    {
        calls.push_back("write " + database + " " + collection + " " + document.valueAsString("k", ""));
        id = "given";
    }

    void find(const std::string& database, const std::string& collection, const ObjectProperties& query,
              const ObjectProperties& projection, std::list<ObjectProperties*>& results, int limit, int skip) override
    {
        calls.push_back("find " + database + " " + collection + " " + query.valueAsString("k", "") + " " +
                        (projection.isEmpty() ? "whole" : "part") + " " + std::to_string(limit) + " " +
                        std::to_string(skip));
        lists.push_back(&results);
    }

    void remove(const std::string& database, const std::string& collection, const ObjectProperties& query) override
    {
        calls.push_back("remove " + database + " " + collection + " " + query.valueAsString("k", ""));
    }

    std::vector<std::string> calls;
    std::vector<const void*> lists;
};

using Calls = std::vector<std::string>;

ObjectProperties document()
{
    ObjectProperties result;
    result.setValueString("k", "v");
    return result;
}

TEST(ClientOverloads, ConnectWithEverythingGoesThroughTheVirtualConnect)
{
    RecordingClient client;
    client.connect("test", "dbhost", 27017, "u", "p");
    EXPECT_EQ(client.calls, Calls{"connect mongodb://u:p@dbhost:27017/test"});
    EXPECT_FALSE(client.isConnected());
}

TEST(ClientOverloads, ConnectWithHostAndPortGoesThroughTheVirtualConnect)
{
    RecordingClient client;
    client.connect("dbhost", 27017);
    EXPECT_EQ(client.calls, Calls{"connect mongodb://dbhost:27017/"});
}

TEST(ClientOverloads, WriteWithoutAnIdGoesThroughTheVirtualWrite)
{
    RecordingClient client;
    static_cast<DataBaseClient&>(client).write("d", "c", document());
    EXPECT_EQ(client.calls, Calls{"write d c v"});
}

TEST(ClientOverloads, ReadGoesThroughTheVirtualFindWithoutProjectionLimitAndSkip)
{
    RecordingClient client;
    std::list<ObjectProperties*> results;
    client.read("d", "c", document(), results);
    EXPECT_EQ(client.calls, Calls{"find d c v whole 0 0"});
    EXPECT_EQ(client.lists, std::vector<const void*>{&results});
}

TEST(ClientOverloads, FullCollectionNamesGoThroughTheVirtualOperations)
{
    RecordingClient client;
    std::list<ObjectProperties*> results;
    client.write("d.c.e", document());
    client.read("d.c.e", document(), results);
    client.remove("d.c.e", document());
    EXPECT_EQ(client.calls, (Calls{"write d c.e v", "find d c.e v whole 0 0", "remove d c.e v"}));
    EXPECT_EQ(client.lists, std::vector<const void*>{&results});
}

// Replaces the three-argument forms alone: the overloads with one full name must reach these.
class ShortFormsClient : public DataBaseClient
{
public:
    using DataBaseClient::read;
    using DataBaseClient::write;

    void write(const std::string& database, const std::string& collection, const ObjectProperties&) override
    {
        calls.push_back("write " + database + " " + collection);
    }

    void read(const std::string& database, const std::string& collection, const ObjectProperties&,
              std::list<ObjectProperties*>&) override
    {
        calls.push_back("read " + database + " " + collection);
    }

    std::vector<std::string> calls;
};

TEST(ClientOverloads, FullCollectionNamesReachTheOverloadWithTwoNames)
{
    ShortFormsClient client;
    std::list<ObjectProperties*> results;
    client.write("d.c", document());
    client.read("d.c", document(), results);
    EXPECT_EQ(client.calls, (Calls{"write d c", "read d c"}));
}

} // namespace
