// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "object_properties.h"
#include "row_name.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <sstream>
#include <string>
#include <vector>

namespace {

using test_support::thrownText;

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

const std::string notConnected = "invalid_argument: Connection is not established. Run connect before";

class ClientOperation : public testing::TestWithParam<Operation>
{
protected:
    static std::string refusal(DataBaseClient& client, const Texts& names)
    {
        return thrownText([&] { GetParam().call(client, names); });
    }
};

TEST_P(ClientOperation, RequiresAConnectionBeforeItChecksAnyArgument)
{
    DataBaseClient client;
    const Texts names(GetParam().argumentNames.size(), "");

    EXPECT_EQ(refusal(client, names), notConnected);
}

TEST_P(ClientOperation, RequiresAConnectionAgainAfterDisconnect)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    client.disconnect();
    const Texts names(GetParam().argumentNames.size(), "given");

    EXPECT_EQ(refusal(client, names), notConnected);
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

        EXPECT_EQ(refusal(client, names), "invalid_argument: " + GetParam().argumentNames[given] + " is empty");
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

        EXPECT_EQ(refusal(client, names), "invalid_argument: " + GetParam().argumentNames[index] + " is empty");
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ClientOperation, testing::ValuesIn(operations), RowName());

TEST(FullCollectionName, IsCheckedAfterTheConnectionIfItIsEmpty)
{
    DataBaseClient client;
    EXPECT_EQ(thrownText([&] { client.write("", empty()); }), notConnected);
    client.connect("mongodb://127.0.0.1:1/");

    const auto refused = [&client](const char* name) { return thrownText([&] { client.remove(name, empty()); }); };
    EXPECT_EQ(refused(""), "invalid_argument: Database name is empty");
    EXPECT_EQ(refused(".x"), "invalid_argument: Database name is empty");
    EXPECT_EQ(refused("x."), "invalid_argument: Collection name is empty");
}

TEST(ReadFile, WithoutAStreamFailsOnlyAfterTheNamesWereChecked)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");

    EXPECT_EQ(thrownText([&] { client.readFile("", "fs", "name", nullptr); }),
              "invalid_argument: Database name is empty");
    EXPECT_EQ(thrownText([&] { client.readFile("database", "fs", "name", nullptr); }),
              "runtime_error: Error: iostream is not initialized");
}

TEST(Update, RefusesAnUnknownCommandBeforeAnUnknownFlagAndBothBeforeAnythingIsSent)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    const auto refused = [&client](int flag, int command) {
        return thrownText([&] {
            client.update("d", "c", empty(), empty(), static_cast<UpdateFlag>(flag),
                          static_cast<UpdateCommand>(command));
        });
    };
    EXPECT_EQ(refused(0, 0), "invalid_argument: Uncknown command");
    EXPECT_EQ(refused(3, 0), "invalid_argument: Uncknown command");
    EXPECT_EQ(refused(0, 10), "invalid_argument: Uncknown command");
    EXPECT_EQ(refused(3, 10), "invalid_argument: Uncknown command");
    EXPECT_EQ(refused(3, 1), "invalid_argument: Uncknown update flag");
    EXPECT_EQ(refused(3, 9), "invalid_argument: Uncknown update flag");
}

} // namespace
