// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "object_properties.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Operation
{
    const char* name;
    std::vector<std::string> argumentNames; ///< in the order in which they are checked
    std::function<void(DataBaseClient&, const std::vector<std::string>&)> call;
};

void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

const ObjectProperties& empty()
{
    static const ObjectProperties document;
    return document;
}

using Texts = std::vector<std::string>;

const Operation operations[] = {
    {"Write",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) { client.write(names[0], names[1], empty()); }},
    {"WriteWithId",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         std::string id;
         client.write(names[0], names[1], empty(), id);
     }},
    {"Update",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         client.update(names[0], names[1], empty(), empty(), UpdateFlagNone, UpdateCommandUndefined);
     }},
    {"Remove",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) { client.remove(names[0], names[1], empty()); }},
    {"Read",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         std::list<ObjectProperties*> results;
         client.read(names[0], names[1], empty(), results);
     }},
    {"Find",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         std::list<ObjectProperties*> results;
         client.find(names[0], names[1], empty(), empty(), results, 0, 0);
     }},
    {"Aggregate",
     {"Database name", "Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         std::list<ObjectProperties*> results;
         client.aggregate(names[0], names[1], empty(), results);
     }},
    {"AddUser",
     {"Database name", "User name"},
     [](DataBaseClient& client, const Texts& names) { client.addUser(names[0], names[1], "", empty(), empty()); }},
    {"UpdateUser",
     {"Database name", "Username"},
     [](DataBaseClient& client, const Texts& names) { client.updateUser(names[0], names[1], empty(), empty()); }},
    {"ChangeUserPassword",
     {"Database name", "Username", "Password"},
     [](DataBaseClient& client, const Texts& names) { client.changeUserPassword(names[0], names[1], names[2]); }},
    {"RemoveUser",
     {"Database name", "Username"},
     [](DataBaseClient& client, const Texts& names) { client.removeUser(names[0], names[1]); }},
    {"ReadFile",
     {"Database name", "GridFS Collection name", "GridFS file name"},
     [](DataBaseClient& client, const Texts& names) { client.readFile(names[0], names[1], names[2], nullptr); }},
    {"WriteFile",
     {"Database name", "GridFS collection name", "GridFS file name", "GridFS input file name"},
     [](DataBaseClient& client, const Texts& names) { client.writeFile(names[0], names[1], names[2], names[3]); }},
    {"ListFiles",
     {"Database name", "GridFS Collection name"},
     [](DataBaseClient& client, const Texts& names) {
         std::list<std::string> files;
         client.listFiles(names[0], names[1], files);
     }},
    {"RemoveFile",
     {"Database name", "GridFS Collection name", "GridFS file name"},
     [](DataBaseClient& client, const Texts& names) { client.removeFile(names[0], names[1], names[2]); }},
};

std::string refusal(const Operation& operation, DataBaseClient& client, const Texts& names)
{
    try
    {
        operation.call(client, names);
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
    catch (const std::runtime_error& error)
    {
        return std::string("runtime_error: ") + error.what();
    }
    return "nothing was thrown";
}

class ClientOperation : public testing::TestWithParam<Operation>
{};

TEST_P(ClientOperation, RequiresAConnectionBeforeItChecksAnyArgument)
{
    DataBaseClient client;
    const Texts names(GetParam().argumentNames.size(), "");

    EXPECT_EQ(refusal(GetParam(), client, names), "Connection is not established. Run connect before");
}

TEST_P(ClientOperation, RequiresAConnectionAgainAfterDisconnect)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    client.disconnect();
    const Texts names(GetParam().argumentNames.size(), "given");

    EXPECT_EQ(refusal(GetParam(), client, names), "Connection is not established. Run connect before");
}

TEST_P(ClientOperation, NamesTheFirstArgumentThatIsEmpty)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    const std::size_t count = GetParam().argumentNames.size();
    for (std::size_t given = 0; given < count; ++given)
    {
        Texts names(count, "");
        std::fill_n(names.begin(), given, "given");

        EXPECT_EQ(refusal(GetParam(), client, names), GetParam().argumentNames[given] + " is empty");
        EXPECT_TRUE(client.isConnected());
    }
}

TEST_P(ClientOperation, TreatsANameThatBeginsWithAZeroByteAsEmpty)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    const std::size_t count = GetParam().argumentNames.size();
    for (std::size_t index = 0; index < count; ++index)
    {
        Texts names(count, "given");
        names[index] = std::string("\0x", 2);

        EXPECT_EQ(refusal(GetParam(), client, names), GetParam().argumentNames[index] + " is empty");
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ClientOperation, testing::ValuesIn(operations), RowName());

TEST(FullCollectionName, IsCheckedAfterTheConnectionIfItIsEmpty)
{
    DataBaseClient client;
    EXPECT_THROW(client.write("", empty()), std::invalid_argument);
    client.connect("mongodb://127.0.0.1:1/");

    const auto refused = [&client](const std::string& name) {
        try
        {
            client.remove(name, empty());
        }
        catch (const std::invalid_argument& error)
        {
            return std::string(error.what());
        }
        return std::string("nothing was thrown");
    };
    EXPECT_EQ(refused(""), "Database name is empty");
    EXPECT_EQ(refused(".x"), "Database name is empty");
    EXPECT_EQ(refused("x."), "Collection name is empty");
}

TEST(ReadFile, WithoutAStreamFailsOnlyAfterTheNamesWereChecked)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");

    EXPECT_THROW(client.readFile("", "fs", "name", nullptr), std::invalid_argument);
    try
    {
        client.readFile("database", "fs", "name", nullptr);
        FAIL() << "a null stream was accepted";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "Error: iostream is not initialized");
    }
}

TEST(Update, RefusesAnUnknownCommandBeforeAnUnknownFlagAndBothBeforeAnythingIsSent)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    const auto refused = [&client](int flag, int command) {
        try
        {
            client.update("d", "c", empty(), empty(), static_cast<UpdateFlag>(flag),
                          static_cast<UpdateCommand>(command));
        }
        catch (const std::invalid_argument& error)
        {
            return std::string(error.what());
        }
        return std::string("nothing was thrown");
    };
    EXPECT_EQ(refused(0, 0), "Uncknown command");
    EXPECT_EQ(refused(3, 0), "Uncknown command");
    EXPECT_EQ(refused(0, 10), "Uncknown command");
    EXPECT_EQ(refused(3, 10), "Uncknown command");
    EXPECT_EQ(refused(3, 1), "Uncknown update flag");
    EXPECT_EQ(refused(3, 9), "Uncknown update flag");
}

} // namespace
