// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "connection_options.h"
#include "row_name.h"

namespace test_support {
namespace {

class DocumentCommand : public ConnectedClient
{
public:
    DocumentCommand() { gateway().clear(); }

    std::string sentFind(const ObjectProperties& query, const ObjectProperties& projection = {}, int limit = 0,
                         int skip = 0)
    {
        gateway().clear();
        dbc::Results results;
        thrownText([&] { client().find(database(), "c", query, projection, results, limit, skip); });
        return sent("find");
    }
};

TEST_F(DocumentCommand, OfAWriteCarriesTheFieldsSortedAndTheIdLast)
{
    ObjectProperties document;
    document.setValueInt32("b", 2);
    document.setValueInt32("a", 1);
    std::string id;

    client().write(database(), "c", document, id);

    EXPECT_EQ(sent("insert"),
              R"({ "insert" : "c", "ordered" : true, "documents" : [ { "a" : 1, "b" : 2, "_id" : { "$oid" : ")" + id +
                  R"(" } } ] })");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{"insert"});
    EXPECT_EQ(gateway().commands("insert").at(0).database, database());
}

TEST_F(DocumentCommand, OfAWriteCarriesAnIdOfTheDocumentBesideTheNewOne)
{
    std::string id;
    thrownText([&] { client().write(database(), "c", number("_id", 5), id); });

    EXPECT_EQ(sent("insert"),
              R"({ "insert" : "c", "ordered" : true, "documents" : [ { "_id" : 5, "_id" : { "$oid" : ")" + id +
                  R"(" } } ] })");
}

TEST_F(DocumentCommand, OfARemoveSelectsEveryMatch)
{
    client().remove(database(), "c", number("a", 1));

    EXPECT_EQ(sent("delete"),
              R"({ "delete" : "c", "ordered" : true, "deletes" : [ { "q" : { "a" : 1 }, "limit" : 0 } ] })");
}

TEST_F(DocumentCommand, OfAFindCarriesTheQueryAlone)
{
    EXPECT_EQ(sentFind(ObjectProperties()), R"({ "find" : "c", "filter" : {  } })");
    EXPECT_EQ(sentFind(number("a", 1)), R"({ "find" : "c", "filter" : { "a" : 1 } })");
}

TEST_F(DocumentCommand, OfAFindCarriesLimitAndSkip)
{
    EXPECT_EQ(sentFind(ObjectProperties(), {}, 5, 3), R"({ "find" : "c", "filter" : {  }, "skip" : 3, "limit" : 5 })");
    EXPECT_EQ(sentFind(ObjectProperties(), {}, 5, 0), R"({ "find" : "c", "filter" : {  }, "limit" : 5 })");
    EXPECT_EQ(sentFind(ObjectProperties(), {}, 0, 3), R"({ "find" : "c", "filter" : {  }, "skip" : 3 })");
    EXPECT_EQ(sentFind(ObjectProperties(), {}, -2, 0),
              R"({ "find" : "c", "filter" : {  }, "limit" : 2, "singleBatch" : true })");
}

TEST_F(DocumentCommand, OfAFindCarriesTheProjection)
{
    EXPECT_EQ(sentFind(ObjectProperties(), number("a", 1)),
              R"({ "find" : "c", "filter" : {  }, "projection" : { "a" : 1 } })");
}

TEST_F(DocumentCommand, OfAFindSplitsAQueryThatHasDollarQueryAndOrderby)
{
    ObjectProperties query;
    query.beginGroup("$orderby");
    query.setValueInt32("a", -1);
    query.endGroup();
    query.beginGroup("$query");
    query.setValueInt32("b", 1);
    query.endGroup();

    EXPECT_EQ(sentFind(query), R"({ "find" : "c", "filter" : { "b" : 1 }, "sort" : { "a" : -1 } })");
}

TEST_F(DocumentCommand, OfAReadIsThatOfAFindWithoutProjectionLimitAndSkip)
{
    dbc::Results results;
    client().read(database(), "c", number("a", 1), results);

    EXPECT_EQ(sent("find"), R"({ "find" : "c", "filter" : { "a" : 1 } })");
}

TEST_F(DocumentCommand, OfAnAggregationCarriesThePipeline)
{
    dbc::Results results;
    client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) { stage.setValueInt32("$limit", 1); }),
                       results);

    EXPECT_EQ(sent("aggregate"), R"({ "aggregate" : "c", "pipeline" : [ { "$limit" : 1 } ], "cursor" : {  } })");
}

TEST_F(DocumentCommand, OfAnAggregationTakesNumberedStagesAsThePipeline)
{
    ObjectProperties stages;
    stages.beginGroup("0");
    stages.setValueInt32("$limit", 1);
    stages.endGroup();
    dbc::Results results;
    client().aggregate(database(), "c", stages, results);

    EXPECT_EQ(sent("aggregate"), R"({ "aggregate" : "c", "pipeline" : [ { "$limit" : 1 } ], "cursor" : {  } })");
}

TEST_F(DocumentCommand, OfAnAggregationIsFollowedByOthersOfItsSession)
{
    gateway().inject(Fault::answer(R"({"ok": 1, "cursor": {"id": {"$numberLong": "7"}, "ns": ")" + database() +
                                   R"(.c", "firstBatch": [{"n": 1}]}})")
                         .onCommand("aggregate"));
    gateway().inject(Fault::answer(R"({"ok": 1, "cursor": {"id": {"$numberLong": "0"}, "ns": ")" + database() +
                                   R"(.c", "nextBatch": [{"n": 2}]}})")
                         .onCommand("getMore"));
    dbc::Results results;

    client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) { stage.setValueInt32("$limit", 2); }),
                       results);

    EXPECT_EQ(results.size(), 2U);
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"aggregate", "getMore"}));
    EXPECT_EQ(sent("getMore"), R"({ "getMore" : 7, "collection" : "c" })");
    EXPECT_EQ(gateway().commands("getMore").at(0).json("lsid"), gateway().commands("aggregate").at(0).json("lsid"));
}

TEST_F(DocumentCommand, OfAnAggregationCarriesTheConcernThatItsLastStageTakes)
{
    client().connect(withOptions(gateway().uri(), "w=majority&readConcernLevel=local"));
    const std::string reply = R"({"ok": 1, "cursor": {"id": {"$numberLong": "0"}, "ns": "d.c", "firstBatch": []}})";
    const auto sentWith = [&](const char* stage, const auto& setValue) {
        gateway().clear();
        gateway().inject(Fault::answer(reply).onCommand("aggregate"));
        dbc::Results results;
        client().aggregate(database(), "c", pipeline([&](ObjectProperties& document) { setValue(document, stage); }),
                           results);
        return gateway().commands("aggregate").at(0);
    };
    const auto setText = [](ObjectProperties& document, const char* stage) { document.setValueString(stage, "t"); };
    const auto setNumber = [](ObjectProperties& document, const char* stage) { document.setValueInt32(stage, 1); };

    // Compared one by one, because their order depends on the version of the driver.
    const auto expectConcerns = [](const RecordedCommand& command, const std::string& writeConcern) {
        EXPECT_EQ(command.json("readConcern"), R"({ "level" : "local" })");
        EXPECT_EQ(command.json("writeConcern"), writeConcern);
    };
    expectConcerns(sentWith("$limit", setNumber), "");
    expectConcerns(sentWith("$out", setText), R"({ "w" : "majority" })");
    expectConcerns(sentWith("$merge", setText), R"({ "w" : "majority" })");
}

TEST_F(DocumentCommand, OfAnAggregationThatTheServerRefusesIsAnError)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no such stage", "code": 40324})").onCommand("aggregate"));
    dbc::Results results;

    const std::string error = thrownText([&] {
        client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) { stage.setValueInt32("$none", 1); }),
                           results);
    });

    EXPECT_EQ(error, "runtime_error: Aggregation error.: no such stage(code: 40324)");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{"aggregate"});
}

TEST_F(DocumentCommand, ContainsTheWholeDocumentWhereverItsCursorIs)
{
    ObjectProperties document = number("a", 1);
    document.beginGroup("g");
    document.setValueInt32("b", 2);

    EXPECT_EQ(sentFind(document), R"({ "find" : "c", "filter" : { "a" : 1, "g" : { "b" : 2 } } })");
}

TEST_F(DocumentCommand, IsNotSentWhenAnArgumentIsRefused)
{
    ObjectProperties query;
    query.setValueInt32("$query", 1);
    dbc::Results results;

    thrownText([&] { client().read(database(), "c", query, results); });
    thrownText([&] { client().write("", "c", query); });
    thrownText([&] { client().update(database(), "c", query, query, UpdateFlagNone, static_cast<UpdateCommand>(10)); });

    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

struct UpdateRow
{
    const char* name;
    UpdateFlag flag;
    UpdateCommand command;
    const char* update;
    const char* flags;
};

void PrintTo(const UpdateRow& row, std::ostream* out)
{
    *out << row.name;
}

class UpdateOnTheWire : public DocumentCommand, public testing::WithParamInterface<UpdateRow>
{};

TEST_P(UpdateOnTheWire, CarriesQueryOperatorAndFlags)
{
    thrownText(
        [&] { client().update(database(), "c", number("k", 1), number("a", 2), GetParam().flag, GetParam().command); });

    EXPECT_EQ(sent("update"),
              std::string(R"({ "update" : "c", "ordered" : true, "updates" : [ { "q" : { "k" : 1 }, "u" : )") +
                  GetParam().update + ", " + GetParam().flags + " } ] }");
}

constexpr const char* firstMatch = R"("upsert" : false, "multi" : false)";
INSTANTIATE_TEST_SUITE_P(
    Updates, UpdateOnTheWire,
    testing::Values(
        UpdateRow{"Replace", UpdateFlagNone, UpdateCommandReplace, R"({ "a" : 2 })", firstMatch},
        UpdateRow{"Rename", UpdateFlagNone, UpdateCommandRename, R"({ "$rename" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Set", UpdateFlagNone, UpdateCommandSet, R"({ "$set" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Unset", UpdateFlagNone, UpdateCommandUnset, R"({ "$unset" : { "a" : 2 } })", firstMatch},
        UpdateRow{"AddToSet", UpdateFlagNone, UpdateCommandAddToSet, R"({ "$addToSet" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Pop", UpdateFlagNone, UpdateCommandPop, R"({ "$pop" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Pull", UpdateFlagNone, UpdateCommandPull, R"({ "$pull" : { "a" : 2 } })", firstMatch},
        UpdateRow{"PullAll", UpdateFlagNone, UpdateCommandPullAll, R"({ "$pullAll" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Push", UpdateFlagNone, UpdateCommandPush, R"({ "$push" : { "a" : 2 } })", firstMatch},
        UpdateRow{"Upsert", UpdateFlagUpsert, UpdateCommandSet, R"({ "$set" : { "a" : 2 } })",
                  R"("upsert" : true, "multi" : false)"},
        UpdateRow{"Multi", UpdateFlagMultiUpdate, UpdateCommandSet, R"({ "$set" : { "a" : 2 } })",
                  R"("upsert" : false, "multi" : true)"}),
    RowName());

} // namespace
} // namespace test_support
