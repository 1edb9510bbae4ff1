// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Calls every operation of a client with random documents and names, with a real driver and server. Each operation must
// return or throw one of its two exceptions. The process must never end.
//
// DATABASE_CLIENT_TEST_ROUNDS: number of rounds. DATABASE_CLIENT_TEST_SEED: start value of the random numbers.

#include "database_client.h"
#include "dbc/results.h"
#include "environment.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <list>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using test_support::environmentNumber;
using test_support::ScratchDatabase;
using test_support::TestServer;

class Generator
{
public:
    explicit Generator(std::uint64_t seed) : m_random(seed) {}

    std::uint64_t number(std::uint64_t below) { return m_random() % below; }

    template <std::size_t Size>
    std::string one(const std::array<const char*, Size>& texts)
    {
        return texts[number(Size)];
    }

    // Returns a key that has a meaning for the driver or the server, or an ordinary key.
    std::string key()
    {
        static const std::array<const char*, 40> keys{"$query",
                                                      "$orderby",
                                                      "$hint",
                                                      "$comment",
                                                      "$max",
                                                      "$min",
                                                      "$maxScan",
                                                      "$maxTimeMS",
                                                      "$returnKey",
                                                      "$showDiskLoc",
                                                      "$showRecordId",
                                                      "$snapshot",
                                                      "$explain",
                                                      "$readConcern",
                                                      "$collation",
                                                      "$readPreference",
                                                      "$db",
                                                      "$where",
                                                      "$or",
                                                      "$and",
                                                      "$set",
                                                      "$unset",
                                                      "$match",
                                                      "$limit",
                                                      "query",
                                                      "orderby",
                                                      "filter",
                                                      "sort",
                                                      "limit",
                                                      "skip",
                                                      "batchSize",
                                                      "pipeline",
                                                      "cursor",
                                                      "$out",
                                                      "$merge",
                                                      "lsid",
                                                      "a",
                                                      "0",
                                                      "_id",
                                                      "writeConcern"};
        return one(keys);
    }

    void fill(ObjectProperties& document, int depth)
    {
        const auto fields = number(4);
        for (std::uint64_t i = 0; i < fields; ++i)
            addField(document, depth);
    }

    void addField(ObjectProperties& document, int depth)
    {
        const std::string name = key();
        switch (number(depth > 0 ? 13 : 10))
        {
        case 0:
            return document.setValueString(name, one(std::array<const char*, 4>{"", "text", "\xff\xfe", "$a"}));
        case 1:
            return document.setValueBool(name, number(2) == 0);
        case 2:
            return document.setValueInt32(name, static_cast<int>(number(5)) - 2);
        case 3:
            return document.setValueInt64(name, std::numeric_limits<long>::min() + static_cast<long>(number(2)));
        case 4:
            return document.setValueDouble(name, number(2) ? 1e300 : std::numeric_limits<double>::quiet_NaN());
        case 5:
            return document.setValueTime(name, -1);
        case 6:
            return document.setValueId(name, "507f1f77bcf86cd799439011");
        case 7:
            return document.setValueBinary(name, {1, 2, 3});
        case 8:
            return document.setValueRegex(name, "(", "zz");
        case 9:
            document.valueAsString(name, ""); // adds an undefined value
            return;
        case 10:
            document.beginArray(name);
            fill(document, depth - 1);
            return document.endArray();
        default:
            document.beginGroup(name);
            fill(document, depth - 1);
            return document.endGroup();
        }
    }

    ObjectProperties document()
    {
        ObjectProperties result;
        fill(result, 3);
        result.beginGroup("");
        return result;
    }

    // Returns a name that some part of the system may cut or reject, or @p usual.
    std::string name(const std::string& usual)
    {
        switch (number(16))
        {
        case 0:
            return "";
        case 1:
            return "$cmd";
        case 2:
            return ".";
        case 3:
            return "a..b";
        case 4:
            return "system.users";
        case 5:
            return std::string(1 + number(300), 'n');
        case 6:
            return std::string("a\0b", 3);
        case 7:
            return std::string("\0", 1);
        case 8:
            return "\xff\xfe";
        case 9:
            return "a/b\\c \"*<>:|?$";
        case 10:
            return std::string(100000, 'n');
        default:
            return usual;
        }
    }

    int integer()
    {
        static const std::array<int, 6> integers{
            0, 1, -1, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
        return integers[number(integers.size())];
    }

private:
    std::mt19937_64 m_random;
};

class Attempt
{
public:
    Attempt(DataBaseClient& client, const std::string& database, std::uint64_t seed)
        : m_client(client), m_random(seed), m_database(m_random.name(database)), m_collection(m_random.name("c"))
    {}

    void run()
    {
        switch (m_random.number(12))
        {
        case 0:
            return m_client.write(m_database, m_collection, m_random.document());
        case 1:
            return update();
        case 2:
            return m_client.remove(m_database, m_collection, m_random.document());
        case 3:
            return m_client.aggregate(m_database, m_collection, m_random.document(), m_results);
        case 4:
            return m_client.addUser(m_database, m_random.name("user"), m_random.name("password"), m_random.document(),
                                    m_random.document());
        case 5:
            return m_client.updateUser(m_database, m_random.name("user"), m_random.document(), m_random.document());
        case 6:
            return m_client.listFiles(m_database, m_random.name("files"), m_names);
        case 7:
            return m_client.readFile(m_database, m_random.name("files"), m_random.name("name"), &m_stream);
        case 8:
            return m_client.writeFile(m_database, m_random.name("files"), m_random.name("name"), "/proc/self/stat");
        case 9:
            return m_client.removeFile(m_database, m_random.name("files"), m_random.name("name"));
        default:
            m_client.find(m_database, m_collection, m_random.document(), m_random.document(), m_results,
                          m_random.integer(), m_random.integer());
        }
    }

private:
    void update()
    {
        const auto flag = static_cast<UpdateFlag>(m_random.number(4));
        const auto command = static_cast<UpdateCommand>(m_random.number(12));
        const ObjectProperties query = m_random.document();
        m_client.update(m_database, m_collection, query, m_random.document(), flag, command);
    }

    DataBaseClient& m_client;
    Generator m_random;
    std::string m_database;
    std::string m_collection;
    dbc::Results m_results;
    std::list<std::string> m_names;
    std::stringstream m_stream;
};

TEST(HostileArguments, ReturnOrThrowButNeverEndTheProcess)
{
    ScratchDatabase database;
    TestServer::instance().gateway().record(false);
    DataBaseClient client;
    client.connect(TestServer::instance().uri());
    const auto first = environmentNumber("DATABASE_CLIENT_TEST_SEED", 1);
    const auto rounds = environmentNumber("DATABASE_CLIENT_TEST_ROUNDS", 1000);
    std::size_t refused = 0;
    for (std::size_t seed = first; seed < first + rounds; ++seed)
    {
        RecordProperty("last_seed", std::to_string(seed));
        if (std::getenv("DATABASE_CLIENT_TEST_SEED"))
            std::cout << "seed " << seed << std::endl;
        Attempt attempt(client, database.name(), seed);
        refused += test_support::thrownText([&] { attempt.run(); }).empty() ? 0U : 1U;
        ASSERT_TRUE(client.isConnected()) << "seed " << seed;
    }
    EXPECT_GT(refused, 0U);
    EXPECT_LT(refused, rounds);
}

} // namespace
