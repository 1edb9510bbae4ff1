// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Stops a server and starts it again while clients use it.

#include "connection_options.h"
#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using test_support::Fault;
using test_support::ServerProcess;
using test_support::thrownText;
using test_support::WireGateway;
using test_support::withOptions;

// Timeouts that are short enough for a test.
const std::string limits = "serverSelectionTimeoutMS=20000&connectTimeoutMS=2000&socketTimeoutMS=60000";
// With this option the driver waits until its pause is over, half a second after a lost connection and 5 s after a
// failed scan. By default it fails at once.
const std::string untilThePauseIsOver = "serverSelectionTryOnce=false";

std::set<std::string> idsOf(DataBaseClient& client, const std::string& collection)
{
    dbc::Results results;
    client.read("restart", collection, ObjectProperties(), results);
    std::set<std::string> ids;
    for (const ObjectProperties& result : results)
        ids.insert(result.valueAsId("_id", ""));
    return ids;
}

/// Writes documents in a separate thread until end() is called. Stores the ids of acknowledged writes and the errors.
class Writer
{
public:
    explicit Writer(const std::string& uri) : m_thread([this, uri] { write(uri); }) {}
    ~Writer() { end(); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void end()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_ended = true;
        }
        if (m_thread.joinable())
            m_thread.join();
    }

    void waitForFurtherSuccesses(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::size_t wanted = m_acknowledged.size() + count;
        m_changed.wait(lock, [&] { return m_acknowledged.size() >= wanted; });
    }

    void waitForAFurtherFailure()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::size_t wanted = m_failures.size() + 1;
        m_changed.wait(lock, [&] { return m_failures.size() >= wanted; });
    }

    // Call these after end().
    const std::vector<std::string>& acknowledged() const { return m_acknowledged; }
    const std::vector<std::string>& failures() const { return m_failures; }

private:
    void write(const std::string& uri)
    {
        DataBaseClient client;
        client.connect(uri);
        const ObjectProperties document;
        for (;;)
        {
            std::string id;
            const std::string failure = thrownText([&] { client.write("restart", "c", document, id); });
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (failure.empty())
                m_acknowledged.push_back(id);
            else
                m_failures.push_back(failure);
            m_changed.notify_all();
            if (m_ended)
                return;
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_acknowledged;
    std::vector<std::string> m_failures;
    bool m_ended = false;
    std::thread m_thread; // last, because it uses the other members
};

class ServerRestart : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!ServerProcess::available())
            GTEST_SKIP() << "the server given by MONGODB_URI cannot be stopped";
        DataBaseClient::instance(); // initializes the driver before there are threads
        m_server = std::make_unique<ServerProcess>();
    }

    std::unique_ptr<ServerProcess> m_server;
};

TEST_F(ServerRestart, LosesNoWriteThatWasAcknowledgedAndTheSameClientWorksAgain)
{
    Writer writer(withOptions(m_server->uri(), limits));
    for (int round = 0; round < 3; ++round)
    {
        writer.waitForFurtherSuccesses(50);
        m_server->stop();
        writer.waitForAFurtherFailure();
        m_server->start();
        writer.waitForFurtherSuccesses(50);
    }
    writer.end();

    for (const auto& failure : writer.failures())
        EXPECT_EQ(failure.rfind("runtime_error: Error occurred while insert operation: ", 0), 0U) << failure;
    DataBaseClient client;
    client.connect(withOptions(m_server->uri(), limits));
    const auto stored = idsOf(client, "c");
    for (const auto& id : writer.acknowledged())
        EXPECT_EQ(stored.count(id), 1U) << id << " was acknowledged and is lost";
    // A failed write may have been stored, so at most one more document for each failure.
    EXPECT_LE(stored.size(), writer.acknowledged().size() + writer.failures().size());
}

TEST_F(ServerRestart, KeepsTheResultsDeliveredBeforeAndTheNextReadDeliversAll)
{
    WireGateway gateway(m_server->uri(), m_server->rewrite());
    DataBaseClient client;
    client.connect(withOptions(gateway.uri(), limits + "&" + untilThePauseIsOver));
    constexpr std::size_t count = 300; // more documents than in the first batch
    for (std::size_t i = 0; i < count; ++i)
        client.write("restart", "c", ObjectProperties());

    gateway.inject(Fault::holdReply().onCommand("getMore"));
    dbc::Results results;
    std::string failure;
    std::thread reader(
        [&] { failure = thrownText([&] { client.read("restart", "c", ObjectProperties(), results); }); });
    EXPECT_TRUE(gateway.waitForHeldReplies(1));
    m_server->stop();
    gateway.closeConnections();
    reader.join();
    gateway.clearFaults();

    EXPECT_EQ(failure.rfind("runtime_error: Find error.: ", 0), 0U) << failure;
    EXPECT_GT(results.size(), 0U);
    EXPECT_LT(results.size(), count);

    m_server->start();
    EXPECT_EQ(idsOf(client, "c").size(), count) << "the same client works again";
}

TEST_F(ServerRestart, MakesEveryOperationThrowItsOwnExceptionWhileTheServerIsDown)
{
    DataBaseClient client;
    client.connect(withOptions(m_server->uri(), "serverSelectionTimeoutMS=200&connectTimeoutMS=200"));
    m_server->stop();
    const ObjectProperties empty;
    const auto expectFailure = [](const char* message, const auto& call) {
        const std::string text = thrownText(call);
        EXPECT_EQ(text.rfind(std::string("runtime_error: ") + message + ": ", 0), 0U) << text;
    };
    dbc::Results results;
    std::list<std::string> names;
    expectFailure("Error occurred while insert operation", [&] { client.write("d", "c", empty); });
    expectFailure("Updating failed", [&] { client.update("d", "c", empty, empty, UpdateFlagNone, UpdateCommandSet); });
    expectFailure("Error occurred while remove operation", [&] { client.remove("d", "c", empty); });
    expectFailure("Find error.", [&] { client.read("d", "c", empty, results); });
    expectFailure("Aggregation error.", [&] { client.aggregate("d", "c", empty, results); });
    expectFailure("Error occurred while adding user", [&] { client.addUser("d", "u", "p", empty, empty); });
    expectFailure("Error occurred while updating user", [&] { client.updateUser("d", "u", empty, empty); });
    expectFailure("Error occurred while changing password", [&] { client.changeUserPassword("d", "u", "p"); });
    expectFailure("Error occurred while removing user", [&] { client.removeUser("d", "u"); });
    expectFailure("Error occurred while mongoc_client_get_gridfs operation",
                  [&] { client.listFiles("d", "f", names); });
    EXPECT_TRUE(results.empty());
    EXPECT_TRUE(names.empty());
    EXPECT_TRUE(client.isConnected());
}

// Measures no time: the server never replies, so only the socket timeout can end the operation.
TEST_F(ServerRestart, EndsAnOperationAtTheServerSelectionTimeoutIfNothingAccepts)
{
    WireGateway gateway(m_server->uri(), m_server->rewrite());
    gateway.refuseConnections();
    DataBaseClient client;
    client.connect(withOptions(gateway.uri(), "serverSelectionTimeoutMS=300"));
    EXPECT_THROW(client.write("restart", "c", ObjectProperties()), std::runtime_error);
    gateway.pause();
    gateway.acceptConnections();
    DataBaseClient another;
    another.connect(withOptions(gateway.uri(), "serverSelectionTimeoutMS=300&connectTimeoutMS=200"));
    EXPECT_THROW(another.write("restart", "c", ObjectProperties()), std::runtime_error);
    gateway.resume();
}

} // namespace
