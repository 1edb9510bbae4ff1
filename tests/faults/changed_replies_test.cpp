// Replies of a server changed in every way: cut, with bytes of any value, and well formed with strange contents.
// Whatever they are, every operation returns or throws its own exception: the process never ends.
//
// DATABASE_CLIENT_TEST_ROUNDS is how many are tried of each way, DATABASE_CLIENT_TEST_SEED where to start.

#include "database_client.h"
#include "environment_number.h"
#include "object_properties.h"
#include "owned_bson.h"
#include "result_list.h"
#include "row_name.h"
#include "test_server.h"
#include "wire_message.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <mutex>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test_support {
namespace {

/// Changes replies. Called by threads of the gateway.
class Changer
{
public:
    /// @param host  where the replies come from, as a member of a replica set would call itself
    Changer(std::uint64_t seed, std::string host) : m_random(seed), m_host(std::move(host)) {}

    void cut(Bytes& reply)
    {
        const std::lock_guard lock(m_mutex);
        reply.resize(WireMessage::kHeaderSize + number(reply.size() - WireMessage::kHeaderSize + 1));
        setAnnouncedLength(reply);
    }

    void changeBytes(Bytes& reply)
    {
        const std::lock_guard lock(m_mutex);
        const std::size_t begin = number(3) == 0 ? 0 : std::min<std::size_t>(21 + number(20), reply.size() - 1);
        for (std::size_t count = 1 + number(3); count > 0; --count)
            reply[begin + number(reply.size() - begin)] = static_cast<std::uint8_t>(number(number(2) == 0 ? 20 : 256));
    }

    void changeContents(Bytes& reply)
    {
        const OwnedBson nothing;
        changeContents(reply, nothing.get());
    }

    void changeContentsOfMember(Bytes& reply)
    {
        OwnedBson member;
        BSON_APPEND_UTF8(member.get(), "setName", "rs");
        OwnedBson inner;
        BSON_APPEND_UTF8(inner.get(), "0", m_host.c_str());
        BSON_APPEND_UTF8(inner.get(), "1", "127.0.0.1:1");
        BSON_APPEND_ARRAY(member.get(), "hosts", inner.get());
        BSON_APPEND_DOCUMENT(member.get(), "tags", inner.get());
        changeContents(reply, member.get());
    }

private:
    void changeContents(Bytes& reply, const bson_t* added)
    {
        const std::lock_guard lock(m_mutex);
        const std::size_t begin = reply[12] == 1 ? 36 : 21; // behind what stands before the document of either kind
        bson_t document;
        ASSERT_TRUE(reply.size() > begin && bson_init_static(&document, reply.data() + begin, reply.size() - begin));
        OwnedBson changed;
        copy(added, changed.get());
        copy(&document, changed.get());
        if (number(2) == 0)
            appendOneThatIsRead(changed.get());
        const std::uint8_t* const bytes = bson_get_data(changed.get());
        reply.resize(begin);
        reply.insert(reply.end(), bytes, bytes + changed.get()->len);
        setAnnouncedLength(reply);
    }

    std::size_t number(std::size_t below) { return m_random() % below; }

    template <std::size_t size>
    const char* one(const char* const (&texts)[size])
    {
        return texts[number(size)];
    }

    // Some elements are left out, some doubled, some get a value of another kind.
    void copy(const bson_t* from, bson_t* to)
    {
        bson_iter_t element;
        ASSERT_TRUE(bson_iter_init(&element, from));
        while (bson_iter_next(&element))
        {
            const std::string key = bson_iter_key(&element);
            switch (number(40))
            {
            case 0:
                break;
            case 1:
            case 2:
                appendStrange(to, key.c_str());
                break;
            case 3:
                bson_append_iter(to, key.c_str(), -1, &element);
                [[fallthrough]];
            default:
                copyElement(element, key.c_str(), to);
            }
        }
    }

    void copyElement(const bson_iter_t& element, const char* key, bson_t* to)
    {
        const bool isArray = BSON_ITER_HOLDS_ARRAY(&element);
        if (!isArray && !BSON_ITER_HOLDS_DOCUMENT(&element))
        {
            bson_append_iter(to, key, -1, &element);
            return;
        }
        std::uint32_t length = 0;
        const std::uint8_t* bytes = nullptr;
        if (isArray)
            bson_iter_array(&element, &length, &bytes);
        else
            bson_iter_document(&element, &length, &bytes);
        bson_t from;
        ASSERT_TRUE(bson_init_static(&from, bytes, length));
        OwnedBson inner;
        copy(&from, inner.get());
        appendNested(to, key, inner.get(), isArray);
    }

    // libbson says so on standard error when an array does not begin with "0".
    static void appendNested(bson_t* to, const char* key, const bson_t* inner, bool isArray)
    {
        bson_iter_t first;
        const bool canBeArray = bson_empty(inner) || (bson_iter_init(&first, inner) && bson_iter_next(&first) &&
                                                      bson_iter_key(&first) == std::string("0"));
        if (isArray && canBeArray)
            BSON_APPEND_ARRAY(to, key, inner);
        else
            BSON_APPEND_DOCUMENT(to, key, inner);
    }

    // What the driver reads in a reply, of this command or another.
    void appendOneThatIsRead(bson_t* to)
    {
        static const char* const keys[] = {"code",
                                           "errmsg",
                                           "$err",
                                           "errorLabels",
                                           "writeErrors",
                                           "writeConcernError",
                                           "upserted",
                                           "n",
                                           "nModified",
                                           "ok",
                                           "cursor",
                                           "payload",
                                           "done",
                                           "conversationId",
                                           "speculativeAuthenticate",
                                           "saslSupportedMechs",
                                           "$clusterTime",
                                           "operationTime",
                                           "topologyVersion",
                                           "hosts",
                                           "passives",
                                           "arbiters",
                                           "tags",
                                           "compression",
                                           "setName",
                                           "setVersion",
                                           "electionId",
                                           "primary",
                                           "me",
                                           "msg",
                                           "isWritablePrimary",
                                           "secondary",
                                           "lastWrite",
                                           "isreplicaset",
                                           "helloOk",
                                           "serviceId",
                                           "maxWriteBatchSize",
                                           "maxBsonObjectSize",
                                           "maxMessageSizeBytes",
                                           "minWireVersion",
                                           "maxWireVersion",
                                           "logicalSessionTimeoutMinutes"};
        static const char* const innerKeys[] = {"0",         "1",       "code",        "errmsg",     "errorLabels",
                                                "index",     "ns",      "id",          "firstBatch", "key",
                                                "processId", "counter", "clusterTime", "payload"};
        for (std::size_t count = 1 + number(4); count > 0; --count)
        {
            const char* const key = one(keys);
            if (number(2) == 0)
            {
                appendStrange(to, key);
                continue;
            }
            OwnedBson inner;
            for (std::size_t elements = number(3); elements > 0; --elements)
                appendStrange(inner.get(), one(innerKeys));
            appendNested(to, key, inner.get(), number(2) == 0);
        }
    }

    void appendStrange(bson_t* to, const char* key)
    {
        static const char* const texts[] = {"", "text", "\xff", "127.0.0.1:1", "[::1", "a:99999", "i=,r"};
        switch (number(11))
        {
        case 0:
            bson_append_int32(to, key, -1, static_cast<std::int32_t>(m_random()));
            break;
        case 1:
            BSON_APPEND_INT32(to, key, static_cast<std::int32_t>(number(3)) - 1);
            break;
        case 2:
            BSON_APPEND_INT64(to, key, std::numeric_limits<std::int64_t>::min());
            break;
        case 3:
            BSON_APPEND_DOUBLE(to, key, number(2) == 0 ? 1e300 : 0.5);
            break;
        case 4:
            bson_append_utf8(to, key, -1, one(texts), -1);
            break;
        case 5:
            bson_append_utf8(to, key, -1, std::string(number(3000), 'a').c_str(), -1);
            break;
        case 6: {
            const OwnedBson empty;
            BSON_APPEND_DOCUMENT(to, key, empty.get());
            break;
        }
        case 7: {
            OwnedBson inner;
            bson_append_utf8(inner.get(), "0", -1, one(texts), -1);
            BSON_APPEND_NULL(inner.get(), "1");
            BSON_APPEND_ARRAY(to, key, inner.get());
            break;
        }
        case 8:
            BSON_APPEND_NULL(to, key);
            break;
        case 9:
            BSON_APPEND_BOOL(to, key, number(2) == 0);
            break;
        default:
            appendBinary(to, key, one(texts));
        }
    }

    static void appendBinary(bson_t* to, const char* key, const std::string& text)
    {
        bson_append_binary(to, key, -1, BSON_SUBTYPE_BINARY, reinterpret_cast<const std::uint8_t*>(text.data()),
                           static_cast<std::uint32_t>(text.size()));
    }

    std::mutex m_mutex;
    std::mt19937_64 m_random;
    const std::string m_host;
};

struct ChangeRow
{
    const char* name;
    void (Changer::*change)(Bytes&);
    bool isOfGreetings; ///< of what opens a connection, or of what follows
    bool authenticates;
    const char* options; ///< of the connection string, behind those that all have
};

void PrintTo(const ChangeRow& row, std::ostream* out)
{
    *out << row.name;
}

class ChangedReply : public testing::TestWithParam<ChangeRow>
{
protected:
    ChangedReply()
    {
        m_scratch.insert("c", R"({"_id": 1, "a": [1, {"b": "text"}]})");
        DataBaseClient client;
        client.connect(gateway().uri());
        client.writeFile(m_scratch.name(), "fs", "f", "/proc/self/status");
    }
    ~ChangedReply() override { gateway().clearFaults(); }

    static WireGateway& gateway()
    {
        TestServer& server = TestServer::instance();
        return GetParam().authenticates ? server.authGateway() : server.gateway();
    }

    static std::string uri()
    {
        const std::string text = gateway().uri();
        return text + (text.find('?') == std::string::npos ? "?" : "&") +
               "socketTimeoutMS=500&connectTimeoutMS=500&serverSelectionTimeoutMS=500" + GetParam().options;
    }

    static void inject(Changer& changer)
    {
        const auto fault = [&changer] {
            return Fault::changeReply([&changer](Bytes& reply) { (changer.*GetParam().change)(reply); });
        };
        if (!GetParam().isOfGreetings)
            gateway().inject(fault().andLater());
        else
            for (const char* const command : {"isMaster", "ismaster", "hello", "saslStart", "saslContinue"})
                gateway().inject(fault().onCommand(command).andLater());
    }

    void run(DataBaseClient& client, std::size_t operation)
    {
        const std::string& database = m_scratch.name();
        const ObjectProperties nothing;
        ObjectProperties change;
        change.setValueInt32("a", 1);
        ResultList results;
        std::list<std::string> names;
        std::stringstream stream;
        const std::vector<std::function<void()>> operations = {
            [&] { client.write(database, "c", change); },
            [&] { client.update(database, "c", nothing, change, UpdateFlagUpsert, UpdateCommandSet); },
            [&] { client.remove(database, "gone", nothing); },
            [&] { client.read(database, "c", nothing, results.get()); },
            [&] { client.aggregate(database, "c", nothing, results.get()); },
            [&] { client.addUser(database, "u", "secret", nothing, nothing); },
            [&] { client.updateUser(database, "u", nothing, nothing); },
            [&] { client.changeUserPassword(database, "u", "other"); },
            [&] { client.removeUser(database, "u"); },
            [&] { client.listFiles(database, "fs", names); },
            [&] { client.readFile(database, "fs", "f", &stream); },
            [&] { client.writeFile(database, "fs", "g", "/proc/self/status"); },
            [&] { client.removeFile(database, "fs", "g"); },
        };
        operations[operation % operations.size()]();
    }

    ScratchDatabase m_scratch;
};

TEST_P(ChangedReply, NeverEndsTheProcess)
{
    const auto seed = environmentNumber("DATABASE_CLIENT_TEST_SEED", 1);
    const auto rounds = environmentNumber("DATABASE_CLIENT_TEST_ROUNDS", 26);
    Changer changer(seed, "127.0.0.1:" + std::to_string(gateway().port()));
    std::size_t thrown = 0;
    for (std::size_t round = 0; round < rounds; ++round)
    {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
        DataBaseClient client;
        client.connect(uri());
        inject(changer);
        try
        {
            run(client, round);
        }
        catch (const std::runtime_error& error)
        {
            ++thrown;
            EXPECT_NE(error.what(), std::string());
        }
        catch (const std::invalid_argument& error)
        {
            EXPECT_EQ(error.what(), std::string("Bad results")); // of a result that the document model cannot hold
        }
        gateway().clearFaults();
    }
    EXPECT_GT(thrown, 0U) << "no change was noticed";
}

const ChangeRow changes[] = {
    {"Cut", &Changer::cut, false, false, ""},
    {"CutGreeting", &Changer::cut, true, false, ""},
    {"Bytes", &Changer::changeBytes, false, false, ""},
    {"BytesOfGreetings", &Changer::changeBytes, true, false, ""},
    {"BytesOfAuthentication", &Changer::changeBytes, true, true, ""},
    {"Contents", &Changer::changeContents, false, false, ""},
    {"ContentsForUsers", &Changer::changeContents, false, true, ""},
    {"ContentsOfGreetings", &Changer::changeContents, true, false, ""},
    {"ContentsOfAuthentication", &Changer::changeContents, true, true, ""},
    {"ContentsOfGreetingsOfASet", &Changer::changeContentsOfMember, true, false,
     "&replicaSet=rs&readPreference=secondaryPreferred&readPreferenceTags=dc:east"},
};

INSTANTIATE_TEST_SUITE_P(Ways, ChangedReply, testing::ValuesIn(changes), RowName());

} // namespace
} // namespace test_support
