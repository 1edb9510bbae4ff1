// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "connection_options.h"
#include "row_name.h"

#include <cstdint>
#include <functional>
#include <sstream>

namespace test_support {
namespace {

struct OperationRow
{
    const char* name;
    const char* command; ///< The command that the fault affects.
    const char* message;
    bool retried; ///< The driver retries the command once after a lost connection.
    std::function<void(DataBaseClient&, const std::string& database)> run;
};

void PrintTo(const OperationRow& row, std::ostream* out)
{
    *out << row.name;
}

const OperationRow operations[] = {
    {"Write", "insert", "Error occurred while insert operation", false,
     [](DataBaseClient& client, const std::string& database) { client.write(database, "c", ObjectProperties()); }},
    {"Update", "update", "Updating failed", false,
     [](DataBaseClient& client, const std::string& database) {
         ObjectProperties change;
         change.setValueInt32("a", 1);
         client.update(database, "c", ObjectProperties(), change, UpdateFlagUpsert, UpdateCommandSet);
     }},
    {"Remove", "delete", "Error occurred while remove operation", false,
     [](DataBaseClient& client, const std::string& database) { client.remove(database, "c", ObjectProperties()); }},
    {"Find", "find", "Find error.", true,
     [](DataBaseClient& client, const std::string& database) {
         dbc::Results results;
         client.read(database, "c", ObjectProperties(), results);
     }},
    {"Aggregate", "aggregate", "Aggregation error.", true,
     [](DataBaseClient& client, const std::string& database) {
         dbc::Results results;
         client.aggregate(database, "c",
                          ConnectedClient::pipeline([](ObjectProperties& stage) { stage.setValueInt32("$limit", 1); }),
                          results);
     }},
    {"AddUser", "createUser", "Error occurred while adding user", false,
     [](DataBaseClient& client, const std::string& database) {
         client.addUser(database, "u", "secret", ObjectProperties(), ObjectProperties());
     }},
    {"AddUserWithoutPassword", "createUser", "Error occurred while adding user", false,
     [](DataBaseClient& client, const std::string& database) {
         client.addUser(database, "u", "", ObjectProperties(), ObjectProperties());
     }},
    {"UpdateUser", "updateUser", "Error occurred while updating user", false,
     [](DataBaseClient& client, const std::string& database) {
         client.updateUser(database, "u", ObjectProperties(), ObjectProperties());
     }},
    {"ChangeUserPassword", "updateUser", "Error occurred while changing password", false,
     [](DataBaseClient& client, const std::string& database) { client.changeUserPassword(database, "u", "secret"); }},
    {"RemoveUser", "dropUser", "Error occurred while removing user", false,
     [](DataBaseClient& client, const std::string& database) { client.removeUser(database, "u"); }},
    {"ListFiles", "find", "Error occurred while list gridFS files operation", true,
     [](DataBaseClient& client, const std::string& database) {
         std::list<std::string> names;
         client.listFiles(database, "fs", names);
     }},
    {"RemoveFile", "find", "Error occurred while list gridFS files operation", true,
     [](DataBaseClient& client, const std::string& database) { client.removeFile(database, "fs", "f"); }},
    {"WriteFile", "update", "Error occurred while save gridFS file operation", false,
     [](DataBaseClient& client, const std::string& database) {
         client.writeFile(database, "fs", "f", "/proc/self/status");
     }},
    {"ReadFile", "find", "Error occurred while mongoc_gridfs_find_one_by_filename operation", true,
     [](DataBaseClient& client, const std::string& database) {
         std::stringstream stream;
         client.readFile(database, "fs", "f", &stream);
     }},
};

class OperationFault : public ConnectedClient, public testing::WithParamInterface<OperationRow>
{
public:
    OperationFault()
    {
        scratch().insert("c", R"({"_id": 1})");
        client().writeFile(database(), "fs", "f", "/proc/self/status");
    }
    ~OperationFault() override { gateway().clearFaults(); }

    std::string failure()
    {
        return thrownText([this] { GetParam().run(client(), database()); });
    }

    bool isOwn(const std::string& text) const
    {
        return text.rfind(std::string("runtime_error: ") + GetParam().message + ": ", 0) == 0;
    }

    /// Injects a fault that also affects later commands, because the driver retries reads itself.
    void inject(Fault fault) { gateway().inject(std::move(fault).onCommand(GetParam().command).andLater()); }

    /// Expects that the same client works again. Tries several times, because the driver pauses for half a second
    /// before it connects again.
    void expectRecovery()
    {
        gateway().clearFaults();
        dbc::Results results;
        std::string text;
        for (int attempt = 0; attempt < 50; ++attempt)
        {
            text = thrownText([&] { client().read(database(), "c", ObjectProperties(), results); });
            if (text.empty())
                break;
        }
        EXPECT_EQ(text, "");
        EXPECT_GE(results.size(), GetParam().command == std::string("delete") ? 0U : 1U);
    }
};

TEST_P(OperationFault, ThrowsIfTheConnectionDropsBeforeTheServerGetsTheCommand)
{
    inject(Fault::dropBeforeForwarding());
    EXPECT_PRED1([this](const std::string& text) { return isOwn(text); }, failure());
    EXPECT_TRUE(client().isConnected());
    expectRecovery();
}

TEST_P(OperationFault, ThrowsIfTheConnectionDropsAfterTheServerRanTheCommand)
{
    inject(Fault::dropAfterForwarding());
    EXPECT_PRED1([this](const std::string& text) { return isOwn(text); }, failure());
    EXPECT_TRUE(client().isConnected());
    expectRecovery();
}

TEST_P(OperationFault, ThrowsIfTheConnectionDropsInsideTheReply)
{
    inject(Fault::cutReply(20));
    EXPECT_PRED1([this](const std::string& text) { return isOwn(text); }, failure());
    EXPECT_TRUE(client().isConnected());
    expectRecovery();
}

TEST_P(OperationFault, ThrowsForAReplyWithAMalformedHeader)
{
    inject(Fault::rawReply(Bytes(64, 0xFF)));
    EXPECT_PRED1([this](const std::string& text) { return isOwn(text); }, failure());
    expectRecovery();
}

TEST_P(OperationFault, ThrowsTheTextAndCodeOfTheServer)
{
    inject(Fault::answer(R"({"ok": 0, "errmsg": "refused for a test", "code": 13})"));
    EXPECT_EQ(failure(), std::string("runtime_error: ") + GetParam().message + ": refused for a test(code: 13)");
    expectRecovery();
}

TEST_P(OperationFault, ThrowsTheTextAndCodeOfAServerThatIsNotPrimary)
{
    inject(Fault::answer(R"({"ok": 0, "errmsg": "not master", "code": 10107})"));
    const std::string text = failure();
    EXPECT_PRED1([this](const std::string& thrown) { return isOwn(thrown); }, text);
    expectRecovery();
}

TEST_P(OperationFault, ThrowsIfTheReplyIsLaterThanTheSocketTimeout)
{
    client().connect(withOptions(gateway().uri(), "socketTimeoutMS=200"));
    inject(Fault::holdReply());
    EXPECT_PRED1([this](const std::string& text) { return isOwn(text); }, failure());
    expectRecovery();
}

INSTANTIATE_TEST_SUITE_P(Operations, OperationFault, testing::ValuesIn(operations), RowName());

class IterationFault : public ConnectedClient
{
public:
    IterationFault()
    {
        for (int index = 0; index < 250; ++index)
            scratch().insert("c", R"({"_id": )" + std::to_string(index) + "}");
    }
    ~IterationFault() override { gateway().clearFaults(); }

    void expectResultsBeforeTheFault(const char* message, const std::function<void(dbc::Results&)>& run)
    {
        const auto fault = [this](Fault injected) { gateway().inject(std::move(injected).onCommand("getMore")); };
        for (int kind = 0; kind < 3; ++kind)
        {
            if (kind == 0)
                fault(Fault::answer(R"({"ok": 0, "errmsg": "cursor id 1 not found", "code": 43})"));
            else
                fault(kind == 1 ? Fault::dropBeforeForwarding() : Fault::cutReply(100));
            dbc::Results results;
            const std::string text = thrownText([&] { run(results); });

            EXPECT_EQ(text.rfind(std::string("runtime_error: ") + message + ": ", 0), 0U) << text;
            EXPECT_EQ(text.find("(code: 43)") != std::string::npos, kind == 0) << text;
            EXPECT_GT(results.size(), 0U);
            EXPECT_LT(results.size(), 250U);
            int expected = 0;
            for (const ObjectProperties& document : results)
                EXPECT_EQ(document.valueAsInt32("_id", -1), expected++);
        }
        dbc::Results results;
        run(results);
        EXPECT_EQ(results.size(), 250U);
    }
};

TEST_F(IterationFault, OfAFindKeepsTheResultsBeforeIt)
{
    expectResultsBeforeTheFault(
        "Find error.", [this](dbc::Results& results) { client().read(database(), "c", ObjectProperties(), results); });
}

TEST_F(IterationFault, OfAnAggregationKeepsTheResultsBeforeIt)
{
    expectResultsBeforeTheFault("Aggregation error.", [this](dbc::Results& results) {
        client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) {
                               stage.beginGroup("$sort");
                               stage.setValueInt32("_id", 1);
                           }),
                           results);
    });
}

TEST(WriteFault, KeepsTheNewIdEvenIfTheDocumentWasNotStored)
{
    ScratchDatabase scratch;
    WireGateway& gateway = TestServer::instance().gateway();
    DataBaseClient client;
    client.connect(gateway.uri());
    gateway.inject(Fault::dropAfterForwarding().onCommand("insert"));
    std::string id;

    EXPECT_NE(thrownText([&] { client.write(scratch.name(), "c", ObjectProperties(), id); }), "");

    EXPECT_EQ(id.size(), 24U);
    EXPECT_EQ(scratch.count("c", R"({"_id": {"$oid": ")" + id + R"("}})"), 1U);
}

TEST(WriteFault, WithAWriteErrorInTheReplyThrowsItsTextAndCode)
{
    ScratchDatabase scratch;
    WireGateway& gateway = TestServer::instance().gateway();
    DataBaseClient client;
    client.connect(gateway.uri());
    gateway.inject(
        Fault::answer(R"({"ok": 1, "n": 0, "writeErrors": [{"index": 0, "code": 121, "errmsg": "not valid"}]})")
            .onCommand("insert"));
    EXPECT_EQ(thrownText([&] { client.write(scratch.name(), "c", ObjectProperties()); }),
              "runtime_error: Error occurred while insert operation: not valid(code: 121)");
}

TEST(WriteFault, WithoutAnErrorOfTheDriverThrowsTheMessageAlone)
{
    ScratchDatabase scratch;
    WireGateway& gateway = TestServer::instance().gateway();
    DataBaseClient client;
    client.connect(gateway.uri());
    gateway.inject(Fault::answer(R"({"ok": 1, "n": 0, "writeErrors": [{"index": 0, "code": 0, "errmsg": "lost"}]})")
                       .onCommand("insert"));

    EXPECT_EQ(thrownText([&] { client.write(scratch.name(), "c", ObjectProperties()); }),
              "runtime_error: Error occurred while insert operation");
}

} // namespace
} // namespace test_support
