// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A bulk write or an insertMany that fails in the middle: which results the exception has, what is stored, and what
// happens to the rest.

#include "connected_client.h"

#include "dbc/collection.h"
#include "row_name.h"

#include <cstdint>
#include <ostream>
#include <utility>

namespace test_support {
namespace {

using dbc::Bulk;
using dbc::BulkError;
using dbc::BulkOptions;
using dbc::Collection;
using dbc::ErrorKind;
using dbc::Value;

struct IndexAndCode
{
    std::size_t index;
    int code;
    bool operator==(const IndexAndCode& other) const { return index == other.index && code == other.code; }
};

void PrintTo(const IndexAndCode& error, std::ostream* out)
{
    *out << error.index << ':' << error.code;
}

/// The bulk write is the same in all rows. It has four commands: insert {_id: 1} and {_id: 2}; update {_id: 9}, as an
/// upsert, and {_id: 1}; delete {_id: 2}; insert {_id: 3} and {_id: 4}.
struct BulkRow
{
    const char* name;
    bool ordered;
    const char* command;
    std::size_t number;
    Fault fault;
    // Expected contents of the error.
    ErrorKind kind;
    bool mayRetry;
    std::vector<IndexAndCode> errors;
    std::int64_t matched;
    std::int64_t removed;
    std::vector<std::size_t> inserted;
    std::vector<std::size_t> upserted;
    // The "_id" of each document that is stored afterwards.
    const char* stored;
};

void PrintTo(const BulkRow& row, std::ostream* out)
{
    *out << row.name;
}

Fault refusal(int code)
{
    return Fault::answer(R"({"ok": 0, "errmsg": "no", "code": )" + std::to_string(code) + "}");
}

// A reply that rejects the update of {_id: 1} and reports the upsert before it as done.
Fault refusedUpdate()
{
    return Fault::answer(R"({"ok": 1, "n": 1, "nModified": 0, "upserted": [{"index": 0, "_id": 9}],
                             "writeErrors": [{"index": 1, "code": 121, "errmsg": "no"}]})");
}

// A reply with an error of a document that was not sent.
Fault errorWithALargeIndex()
{
    return Fault::answer(R"({"ok": 1, "n": 1, "writeErrors": [{"index": 1000000000, "code": 121, "errmsg": "no"}]})");
}

Fault unconfirmedRemoval()
{
    return Fault::replaceReply(R"({"ok": 1, "n": 1, "writeConcernError": {"code": 64, "errmsg": "too slow"}})");
}

// clang-format off
const BulkRow rows[] = {
    {"RefusedCommand", true, "update", 1, refusal(13), ErrorKind::NotAuthorized, false,
     {}, 0, 0, {0, 1}, {}, "1 2"},
    {"RefusedCommandOfAnUnorderedWrite", false, "update", 1, refusal(13), ErrorKind::NotAuthorized, false,
     {}, 0, 1, {0, 1, 5, 6}, {}, "1 3 4"},
    {"ServerThatEnds", true, "update", 1, refusal(91), ErrorKind::Other, true,
     {}, 0, 0, {0, 1}, {}, "1 2"},
    {"DroppedBeforeTheFirstCommand", true, "insert", 1, Fault::dropBeforeForwarding(), ErrorKind::Network, true,
     {}, 0, 0, {}, {}, ""},
    {"DroppedAfterTheFirstCommand", true, "insert", 1, Fault::dropAfterForwarding(), ErrorKind::Network, true,
     {}, 0, 0, {}, {}, "1 2"},
    {"DroppedBeforeTheSecondCommand", true, "update", 1, Fault::dropBeforeForwarding(), ErrorKind::Network, true,
     {}, 0, 0, {0, 1}, {}, "1 2"},
    {"DroppedBeforeTheSecondCommandOfAnUnorderedWrite", false, "update", 1, Fault::dropBeforeForwarding(),
     ErrorKind::Network, true,
     {}, 0, 0, {0, 1}, {}, "1 2"},
    {"DroppedAfterTheSecondCommand", true, "update", 1, Fault::dropAfterForwarding(), ErrorKind::Network, true,
     {}, 0, 0, {0, 1}, {}, "1 2 9"},
    {"DroppedInsideTheSecondReply", true, "update", 1, Fault::cutReply(20), ErrorKind::Network, true,
     {}, 0, 0, {0, 1}, {}, "1 2 9"},
    {"DroppedBeforeTheThirdCommand", true, "delete", 1, Fault::dropBeforeForwarding(), ErrorKind::Network, true,
     {}, 1, 0, {0, 1}, {2}, "1 2 9"},
    {"DroppedBeforeTheLastCommand", true, "insert", 2, Fault::dropBeforeForwarding(), ErrorKind::Network, true,
     {}, 1, 1, {0, 1}, {2}, "1 9"},
    {"DroppedAfterTheLastCommand", true, "insert", 2, Fault::dropAfterForwarding(), ErrorKind::Network, true,
     {}, 1, 1, {0, 1}, {2}, "1 3 4 9"},
    {"RefusedOperation", true, "update", 1, refusedUpdate(), ErrorKind::Other, false,
     {{3, 121}}, 0, 0, {0, 1}, {2}, "1 2"},
    {"RefusedOperationOfAnUnorderedWrite", false, "update", 1, refusedUpdate(), ErrorKind::Other, false,
     {{3, 121}}, 0, 1, {0, 1, 5, 6}, {2}, "1 3 4"},
    {"WriteThatIsNotConfirmedInTime", true, "delete", 1, unconfirmedRemoval(), ErrorKind::Timeout, false,
     {}, 1, 1, {0, 1, 5, 6}, {2}, "1 3 4 9"},
};
// clang-format on

class BulkFault : public ConnectedClient, public testing::WithParamInterface<BulkRow>
{
public:
    BulkFault() : m_collection(client(), database(), "c")
    {
        m_bulk.insertOne({{"_id", 1}})
            .insertOne({{"_id", 2}})
            .updateOne({{"_id", 9}}, {{"$set", {{"a", 1}}}}, upsert())
            .updateOne({{"_id", 1}}, {{"$set", {{"a", 1}}}})
            .removeOne({{"_id", 2}})
            .insertOne({{"_id", 3}})
            .insertOne({{"_id", 4}});
    }
    ~BulkFault() override { gateway().clearFaults(); }

    const Bulk& bulk() const { return m_bulk; }
    Collection& collection() { return m_collection; }

    std::string storedIds()
    {
        std::string ids;
        dbc::FindOptions options;
        options.sort = {{"_id"}};
        for (const Value& document : m_collection.find({}, options))
            ids += (ids.empty() ? "" : " ") + std::to_string(document.at("_id").get<int>().value());
        return ids;
    }

private:
    static dbc::BulkUpdateOptions upsert()
    {
        dbc::BulkUpdateOptions options;
        options.upsert = true;
        return options;
    }

    Collection m_collection;
    Bulk m_bulk;
};

std::vector<std::size_t> indexesOf(const std::vector<dbc::IndexedId>& ids)
{
    std::vector<std::size_t> indexes;
    for (const dbc::IndexedId& id : ids)
        indexes.push_back(id.index);
    return indexes;
}

TEST_P(BulkFault, ReportsWhatWasDoneAndLeavesTheClientUsable)
{
    const BulkRow& row = GetParam();
    BulkOptions options;
    options.ordered = row.ordered;
    gateway().inject(Fault(row.fault).onCommand(row.command).number(row.number).andLater());

    const auto error = thrownError<BulkError>([&] { collection().bulkWrite(bulk(), options); });

    EXPECT_EQ(std::string(error.what()).rfind("Bulk write failed: ", 0), 0U) << error.what();
    EXPECT_EQ(error.kind(), row.kind) << error.what();
    EXPECT_EQ(error.mayRetry(), row.mayRetry);
    std::vector<IndexAndCode> errors;
    for (const dbc::WriteError& refused : error.errors())
        errors.push_back({refused.index, refused.code});
    EXPECT_EQ(errors, row.errors);
    EXPECT_EQ(error.result().inserted, static_cast<std::int64_t>(row.inserted.size()));
    EXPECT_EQ(indexesOf(error.result().insertedIds), row.inserted);
    for (const dbc::IndexedId& inserted : error.result().insertedIds)
        EXPECT_EQ(inserted.id, Value(inserted.index < 2 ? inserted.index + 1 : inserted.index - 2));
    EXPECT_EQ(indexesOf(error.result().upsertedIds), row.upserted);
    EXPECT_EQ(error.result().matched, row.matched);
    EXPECT_EQ(error.result().removed, row.removed);
    EXPECT_TRUE(error.result().acknowledged);
    EXPECT_EQ(gateway().pendingFaults(), 0U);
    gateway().clearFaults();

    EXPECT_EQ(storedIds(), row.stored);
    collection().removeMany({});
    EXPECT_EQ(collection().bulkWrite(bulk()).inserted, 4);
}

INSTANTIATE_TEST_SUITE_P(Rows, BulkFault, testing::ValuesIn(rows), RowName());

/// A collection "c", written to without an order.
class UnorderedBulkFault : public ConnectedClient
{
public:
    UnorderedBulkFault() : m_collection(client(), database(), "c") { m_options.ordered = false; }
    ~UnorderedBulkFault() override { gateway().clearFaults(); }

    Collection& collection() { return m_collection; }
    BulkError failed(const Bulk& bulk)
    {
        return thrownError<BulkError>([&] { m_collection.bulkWrite(bulk, m_options); });
    }

private:
    Collection m_collection;
    BulkOptions m_options;
};

TEST_F(UnorderedBulkFault, ReportsTheIdsBesideARefusedOne)
{
    collection().insertOne({{"_id", 2}});
    Bulk bulk;
    bulk.insertOne({{"_id", 1}}).insertOne({{"_id", 2}}).removeOne({{"_id", 7}}).insertOne({{"_id", 3}});

    const BulkError error = failed(bulk);

    EXPECT_EQ(error.kind(), ErrorKind::DuplicateKey);
    EXPECT_EQ(indexesOf(error.result().insertedIds), (std::vector<std::size_t>{0, 3}));
    ASSERT_EQ(error.errors().size(), 1U);
    EXPECT_EQ(error.errors()[0].index, 1U);
    EXPECT_EQ(error.errors()[0].kind, ErrorKind::DuplicateKey);
}

// The driver reports that two documents were inserted, but not by which command.
TEST_F(UnorderedBulkFault, ReportsTheIdsOfTheCommandThatWasNotRefused)
{
    Bulk bulk;
    bulk.insertOne({{"_id", 1}}).insertOne({{"_id", 2}}).removeOne({{"_id", 7}});
    bulk.insertOne({{"_id", 3}}).insertOne({{"_id", 4}});
    gateway().inject(refusal(13).onCommand("insert"));

    const BulkError error = failed(bulk);

    EXPECT_STREQ(error.what(), "Bulk write failed: no(code: 13)");
    EXPECT_EQ(error.kind(), ErrorKind::NotAuthorized);
    EXPECT_EQ(indexesOf(error.result().insertedIds), (std::vector<std::size_t>{3, 4}));
}

TEST_F(UnorderedBulkFault, ReportsARefusalAlsoIfTheNextCommandSucceeds)
{
    Bulk bulk;
    bulk.insertOne({{"_id", 1}}).removeOne({{"_id", 7}});
    gateway().clear();
    gateway().inject(refusal(13).onCommand("insert"));

    EXPECT_STREQ(failed(bulk).what(), "Bulk write failed: no(code: 13)");
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"insert", "delete"}));
}

TEST_F(UnorderedBulkFault, ReportsAnErrorWhoseIndexIsTooLarge)
{
    Bulk bulk;
    bulk.insertOne({{"_id", 1}});
    gateway().inject(errorWithALargeIndex().onCommand("insert"));

    const BulkError error = failed(bulk);

    ASSERT_EQ(error.errors().size(), 1U);
    EXPECT_EQ(error.errors()[0].index, 1000000000U);
    EXPECT_EQ(indexesOf(error.result().insertedIds), std::vector<std::size_t>{0});
}

TEST_F(UnorderedBulkFault, ReportsARefusalAlsoIfItNeedsSeveralCommandsOfOneType)
{
    Bulk many;
    for (int id = 0; id <= 100000; ++id) // one more than a server accepts in one command
        many.insertOne({{"_id", id}});
    const auto large = [text = std::string(12U << 20U, 'x')](int count) {
        Bulk bulk;
        for (int id = 0; id < count; ++id) // one command has two of them
            bulk.insertOne({{"_id", id}, {"text", text}});
        return bulk;
    };
    const Bulk three = large(3);
    const Bulk four = large(4);
    using Indexes = std::vector<std::size_t>;
    const std::pair<const Bulk*, Indexes> bulks[] = {{&many, {100000}}, {&three, {2}}, {&four, {2, 3}}};
    for (const auto& [bulk, behind] : bulks)
    {
        const std::string reply = R"({"ok": 1, "n": )" + std::to_string(behind.size()) + "}";
        gateway().inject(refusal(13).onCommand("insert"));
        gateway().inject(Fault::answer(reply).onCommand("insert").number(2));

        const BulkError error = failed(*bulk);

        EXPECT_STREQ(error.what(), "Bulk write failed: no(code: 13)");
        EXPECT_EQ(indexesOf(error.result().insertedIds), behind);
        EXPECT_EQ(gateway().pendingFaults(), 0U);
        gateway().clearFaults();
    }
}

/// insertMany() of documents whose "_id" is a number, into a collection "c".
class InsertManyFault : public ConnectedClient
{
public:
    InsertManyFault() : m_collection(client(), database(), "c") {}
    ~InsertManyFault() override { gateway().clearFaults(); }

    BulkError failed(const std::vector<int>& ids, bool isOrdered, const std::string& text = "")
    {
        std::vector<Value> documents;
        for (const int id : ids)
            documents.push_back(Value{{"_id", id}, {"text", text}});
        return failedDocuments(documents, isOrdered);
    }

    BulkError failedDocuments(const std::vector<Value>& documents, bool isOrdered)
    {
        dbc::InsertManyOptions options;
        options.ordered = isOrdered;
        return thrownError<BulkError>([&] { m_collection.insertMany(documents, options); });
    }

    // The "_id" of each document that the error reports as inserted.
    static std::vector<Value> inserted(const BulkError& error)
    {
        EXPECT_EQ(error.result().inserted, static_cast<std::int64_t>(error.result().insertedIds.size()));
        std::vector<Value> ids;
        for (const dbc::IndexedId& id : error.result().insertedIds)
            ids.push_back(id.id);
        return ids;
    }

    static std::vector<std::size_t> refused(const BulkError& error)
    {
        std::vector<std::size_t> indexes;
        for (const dbc::WriteError& refusal : error.errors())
            indexes.push_back(refusal.index);
        return indexes;
    }

    /// Four documents with such a text fill a command.
    static std::string mebibyte() { return std::string(1U << 20U, 'x'); }

private:
    Collection m_collection;
};

TEST_F(InsertManyFault, StopsAnOrderedWriteAtTheFirstRefusal)
{
    const BulkError error = failed({1, 2, 1, 3}, true);

    EXPECT_EQ(inserted(error), (std::vector<Value>{1, 2}));
    EXPECT_EQ(refused(error), std::vector<std::size_t>{2});
    EXPECT_EQ(error.kind(), ErrorKind::DuplicateKey);
    const std::string text = error.what();
    EXPECT_EQ(text.substr(0, 15), "Insert failed: ");
    EXPECT_EQ(text.substr(text.size() - 13), "(code: 11000)");
    EXPECT_EQ(scratch().count("c"), 2U);
}

TEST_F(InsertManyFault, LetsAnUnorderedWriteInsertTheRest)
{
    const BulkError error = failed({1, 1, 2, 2, 3}, false);

    EXPECT_EQ(inserted(error), (std::vector<Value>{1, 2, 3}));
    EXPECT_EQ(refused(error), (std::vector<std::size_t>{1, 3}));
    EXPECT_EQ(scratch().count("c"), 3U);
}

TEST_F(InsertManyFault, LetsAnUnorderedWriteContinueWithTheNextBatch)
{
    scratch().insert("c", R"({"_id": 2})");
    scratch().insert("c", R"({"_id": 6})");

    const BulkError error = failed({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, false, mebibyte());

    EXPECT_EQ(inserted(error), (std::vector<Value>{1, 3, 4, 5, 7, 8, 9, 10}));
    EXPECT_EQ(refused(error), (std::vector<std::size_t>{1, 5}));
}

TEST_F(InsertManyFault, OfTheDriverHasTheIndexOfTheDocument)
{
    std::vector<Value> documents;
    for (int id = 1; id <= 5; ++id)
        documents.push_back(Value{{"_id", id}, {"text", mebibyte()}});
    documents.push_back(Value{{"", "the driver refuses an empty key"}});

    const BulkError error = failedDocuments(documents, true);

    EXPECT_EQ(inserted(error), (std::vector<Value>{1, 2, 3, 4}));
    EXPECT_EQ(refused(error), std::vector<std::size_t>{5});
    EXPECT_EQ(scratch().count("c"), 4U);
}

TEST_F(InsertManyFault, ReportsAnErrorWhoseIndexIsTooLarge)
{
    gateway().inject(errorWithALargeIndex().onCommand("insert"));

    const BulkError error = failed({1}, true);

    EXPECT_EQ(inserted(error), std::vector<Value>{1});
    EXPECT_EQ(refused(error), std::vector<std::size_t>{1000000000});
}

TEST_F(InsertManyFault, OfTheConnectionReportsTheBatchesBefore)
{
    for (const bool isOrdered : {true, false})
    {
        gateway().inject(Fault::dropBeforeForwarding().onCommand("insert").number(2));

        const BulkError error = failed({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, isOrdered, mebibyte());

        EXPECT_EQ(inserted(error), (std::vector<Value>{1, 2, 3, 4}));
        EXPECT_EQ(refused(error), std::vector<std::size_t>{});
        EXPECT_EQ(error.kind(), ErrorKind::Network);
        EXPECT_EQ(scratch().count("c"), 4U);
        scratch().run(R"({"drop": "c"})");
    }
}

TEST_F(InsertManyFault, OfACommandHasTheServersReply)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "full", "code": 14031, "codeName": "OutOfDiskSpace",
                                       "errorLabels": ["SomeLabel"]})")
                         .onCommand("insert")
                         .number(2));

    const BulkError error = failed({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, true, mebibyte());

    EXPECT_STREQ(error.what(), "Insert failed: full(code: 14031)");
    EXPECT_TRUE(error.errors().empty());
    EXPECT_EQ(error.result().inserted, 4);
    EXPECT_TRUE(error.hasLabel("SomeLabel"));
    EXPECT_FALSE(error.mayRetry());
}

} // namespace
} // namespace test_support
