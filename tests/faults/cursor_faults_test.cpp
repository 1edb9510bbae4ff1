// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A cursor whose getMore goes wrong, and one that receives a malformed document.

#include "connection_options.h"
#include "dbc/collection.h"
#include "ten_documents.h"

#include <algorithm>
#include <stdexcept>

namespace test_support {
namespace {

using dbc::Cursor;
using dbc::ErrorKind;
using dbc::ServerError;
using dbc::Value;

class CursorFault : public TenDocuments
{
public:
    Cursor find() { return openInBatchesOf(4); }

    Cursor aggregate()
    {
        dbc::AggregateOptions options;
        options.batchSize = 4;
        return collection().aggregate(dbc::array({Value{{"$sort", {{"_id", 1}}}}}), options);
    }
};

struct MiddleFault
{
    const char* name;
    Fault fault;
    ErrorKind kind;
    bool mayRetry;
};

Fault refusedWith(int code)
{
    return Fault::answer(R"({"ok": 0, "errmsg": "no", "code": )" + std::to_string(code) + "}");
}

TEST_F(CursorFault, IsAnErrorAfterTheDocumentsBefore)
{
    client().connect(withOptions(gateway().uri(), "socketTimeoutMS=1000"));
    const MiddleFault faults[] = {
        {"cursor removed", refusedWith(43), ErrorKind::NotFound, false},
        {"time limit", refusedWith(50), ErrorKind::Timeout, false},
        {"cursor killed", refusedWith(237), ErrorKind::Other, false},
        {"no longer primary", refusedWith(10107), ErrorKind::Other, true},
        {"dropped before", Fault::dropBeforeForwarding(), ErrorKind::Network, true},
        {"dropped after", Fault::dropAfterForwarding(), ErrorKind::Network, true},
        {"cut", Fault::cutReply(30), ErrorKind::Network, true},
        {"late", Fault::holdReply(), ErrorKind::Network, true},
    };
    for (const bool isAggregation : {false, true})
    {
        for (const MiddleFault& row : faults)
        {
            SCOPED_TRACE(row.name);
            Cursor cursor = isAggregation ? aggregate() : find();
            gateway().inject(Fault(row.fault).onCommand("getMore").andLater());
            std::size_t count = 0;

            const auto error = thrownError<ServerError>([&] {
                while (cursor.next())
                    ++count;
            });

            EXPECT_EQ(error.kind(), row.kind) << error.what();
            EXPECT_EQ(error.mayRetry(), row.mayRetry);
            const std::string message = isAggregation ? "Aggregation failed: " : "Find failed: ";
            EXPECT_EQ(std::string(error.what()).rfind(message, 0), 0U) << error.what();
            EXPECT_EQ(count, 4U);
            EXPECT_FALSE(cursor.next());
            EXPECT_THROW(cursor.bson(), std::logic_error);
            gateway().clearFaults();
            EXPECT_EQ(thrownText([&] { EXPECT_EQ(collection().count({}), 10); }), "");
        }
    }
}

TEST_F(CursorFault, OfACursorKilledOnTheServerIsNotFound)
{
    Cursor cursor = find();
    for (int count = 0; count < 8; ++count)
        ASSERT_TRUE(cursor.next());
    const std::string id = gateway().commands("getMore").at(0).json("getMore");
    scratch().run(R"({"killCursors": "c", "cursors": [{"$numberLong": ")" + id + R"("}]})");

    const auto error = thrownError<ServerError>([&] { cursor.next(); });

    EXPECT_EQ(error.code(), 43);
    EXPECT_EQ(error.kind(), ErrorKind::NotFound);
    EXPECT_FALSE(error.mayRetry());
    EXPECT_FALSE(cursor.next());
    EXPECT_EQ(collection().count({}), 10);
}

TEST_F(CursorFault, OfAMalformedDocumentLeavesTheNextReadable)
{
    gateway().inject(Fault::changeReply([](Bytes& reply) {
                         const std::string field("\x02text\0", 6);
                         const auto found = std::search(reply.begin(), reply.end(), field.begin(), field.end());
                         if (found != reply.end())
                             *found = 0x7e; // no type of BSON
                     }).onCommand("find"));
    Cursor cursor = find();

    ASSERT_TRUE(cursor.next());
    EXPECT_THROW(cursor.value(), dbc::FormatError);
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.value(), (Value{{"_id", 2}, {"text", "t2"}}));
}

} // namespace
} // namespace test_support
