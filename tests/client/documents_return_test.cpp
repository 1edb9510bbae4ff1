// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

namespace test_support {
namespace {

using Numbers = std::vector<int>;

class DocumentFind : public ConnectedClient
{
public:
    void insertNumbers(int count)
    {
        for (int index = 0; index < count; ++index)
            scratch().insert("c", R"({"_id": )" + std::to_string(index) + R"(, "a": )" + std::to_string(-index) + "}");
    }

    static Numbers ids(const dbc::Results& results)
    {
        Numbers numbers;
        for (const ObjectProperties& document : results)
            numbers.push_back(document.valueAsInt32("/_id", -1));
        return numbers;
    }

    static ObjectProperties sortedBy(const std::string& key, int direction)
    {
        ObjectProperties query;
        query.beginGroup("$query");
        query.endGroup();
        query.beginGroup("$orderby");
        query.setValueInt32(key, direction);
        query.endGroup();
        return query;
    }

    Numbers found(const ObjectProperties& query, int limit, int skip)
    {
        dbc::Results results;
        client().find(database(), "c", query, ObjectProperties(), results, limit, skip);
        return ids(results);
    }
};

using DocumentAggregate = DocumentFind;

TEST_F(DocumentFind, WithoutLimitAndSkipReturnsEveryMatch)
{
    insertNumbers(5);

    EXPECT_EQ(found(sortedBy("_id", 1), 0, 0), (Numbers{0, 1, 2, 3, 4}));
    EXPECT_EQ(found(number("a", -3), 0, 0), Numbers{3});
    EXPECT_EQ(found(number("a", 99), 0, 0), Numbers{});
}

TEST_F(DocumentFind, SortsByOrderbyOfTheQuery)
{
    insertNumbers(3);

    EXPECT_EQ(found(sortedBy("a", 1), 0, 0), (Numbers{2, 1, 0}));
    EXPECT_EQ(found(sortedBy("a", -1), 0, 0), (Numbers{0, 1, 2}));
}

TEST_F(DocumentFind, LimitsAndSkips)
{
    insertNumbers(5);

    EXPECT_EQ(found(sortedBy("_id", 1), 2, 0), (Numbers{0, 1}));
    EXPECT_EQ(found(sortedBy("_id", 1), 0, 3), (Numbers{3, 4}));
    EXPECT_EQ(found(sortedBy("_id", 1), 2, 1), (Numbers{1, 2}));
    EXPECT_EQ(found(sortedBy("_id", 1), 2, 5), Numbers{});
}

TEST_F(DocumentFind, TakesANegativeLimitAsOneBatchOfThatMany)
{
    insertNumbers(5);

    EXPECT_EQ(found(sortedBy("_id", 1), -2, 0), (Numbers{0, 1}));
}

TEST_F(DocumentFind, ReturnsMoreThanOneBatch)
{
    insertNumbers(250);

    const Numbers all = found(sortedBy("_id", 1), 0, 0);

    ASSERT_EQ(all.size(), 250U);
    EXPECT_EQ(all.front(), 0);
    EXPECT_EQ(all.back(), 249);
}

TEST_F(DocumentFind, ReturnsOnlyTheFieldsOfTheProjection)
{
    scratch().insert("c", R"({"_id": 1, "a": 1, "b": 2})");
    dbc::Results results;

    client().find(database(), "c", ObjectProperties(), number("b", 1), results, 0, 0);

    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results.front().contains("a"));
    EXPECT_EQ(results.front().valueAsInt32("b", 0), 2);
    EXPECT_EQ(results.front().valueAsInt32("_id", 0), 1);
}

TEST_F(DocumentFind, OmitsDocumentsThatTheProjectionLeavesEmpty)
{
    scratch().insert("c", R"({"_id": 1, "a": null})");
    scratch().insert("c", R"({"_id": 2, "a": 5})");
    ObjectProperties projection;
    projection.setValueInt32("_id", 0);
    projection.setValueInt32("a", 1);
    dbc::Results results;

    client().find(database(), "c", ObjectProperties(), projection, results, 0, 0);

    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front().valueAsInt32("a", 0), 5);
}

TEST_F(DocumentFind, AppendsToTheResultsInTheList)
{
    insertNumbers(2);
    dbc::Results results;
    auto* const first = new ObjectProperties;
    auto* const second = new ObjectProperties;
    static_cast<std::list<ObjectProperties*>&>(results) = {first, second};

    client().read(database(), "c", ObjectProperties(), results);

    ASSERT_EQ(results.size(), 4U);
    EXPECT_EQ(&results.front(), first);
    EXPECT_EQ(&*std::next(results.begin()), second);
}

TEST_F(DocumentFind, ReadReturnsEveryMatch)
{
    insertNumbers(3);
    dbc::Results results;

    client().read(database(), "c", ObjectProperties(), results);
    client().read(database() + ".c", number("_id", 1), results);

    EXPECT_EQ(results.size(), 4U);
}

TEST_F(DocumentFind, LeavesTheCursorOfEveryResultAtTheRoot)
{
    scratch().insert("c", R"({"_id": 1, "g": {"h": {"v": 1}}, "l": [1, {"m": [2]}]})");
    dbc::Results results;

    client().read(database(), "c", ObjectProperties(), results);

    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front().group(), "");
    EXPECT_EQ(results.front().valueAsInt32("g/h/v", 0), 1);
}

TEST_F(DocumentFind, InAMissingCollectionReturnsNothing)
{
    dbc::Results results;
    client().read(database(), "missing", ObjectProperties(), results);
    EXPECT_EQ(results.size(), 0U);
}

TEST_F(DocumentFind, RejectedByTheServerThrowsItsTextAndCode)
{
    ObjectProperties query;
    query.beginGroup("a");
    query.setValueInt32("$noSuchOperator", 1);
    scratch().insert("c", R"({"_id": 1})");

    const std::string text = thrownText([&] { found(query, 0, 0); });

    EXPECT_EQ(text.rfind("runtime_error: Find error.: ", 0), 0U) << text;
    EXPECT_NE(text.find("$noSuchOperator"), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 9), "(code: 2)") << text;
}

TEST_F(DocumentFind, ReturnsWhatWasWritten)
{
    ObjectProperties document;
    document.setValueString("string", "text");
    document.setValueLongLong("int64", 5'000'000'000);
    document.setValueDouble("double", 1.5);
    document.setValueTime("time", -1LL);
    document.setValueBinary("binary", {0, 255});
    document.setValueRegex("regex", "^a", "i");
    std::string id;
    client().write(database(), "c", document, id);
    dbc::Results results;

    client().read(database(), "c", ObjectProperties(), results);

    ASSERT_EQ(results.size(), 1U);
    const ObjectProperties& back = results.front();
    EXPECT_EQ(back.valueAsString("string", ""), "text");
    EXPECT_EQ(back.valueAsLongLong("int64", 0), 5'000'000'000);
    EXPECT_EQ(back.valueAsDouble("double", 0), 1.5);
    EXPECT_EQ(back.valueAsTime("time", 0), -1);
    EXPECT_EQ(back.valueAsBinary("binary", {}), (std::vector<unsigned char>{0, 255}));
    EXPECT_EQ(back.valueAsRegex("regex", "", ""), std::make_pair(std::string("^a"), std::string("i")));
    EXPECT_EQ(back.valueAsId("_id", ""), id);
}

ObjectProperties matchSorted(bool asDocumentOfStages)
{
    ObjectProperties pipeline;
    if (!asDocumentOfStages)
        pipeline.beginArray("pipeline");
    pipeline.beginGroup("0");
    pipeline.beginGroup("$match");
    pipeline.beginGroup("_id");
    pipeline.setValueInt32("$gt", 1);
    pipeline.endGroup();
    pipeline.endGroup();
    pipeline.endGroup();
    pipeline.beginGroup("1");
    pipeline.beginGroup("$sort");
    pipeline.setValueInt32("_id", -1);
    return pipeline;
}

TEST_F(DocumentAggregate, RunsAPipelineUnderItsKey)
{
    insertNumbers(4);
    dbc::Results results;

    client().aggregate(database(), "c", matchSorted(false), results);

    EXPECT_EQ(ids(results), (Numbers{3, 2}));
}

TEST_F(DocumentAggregate, RunsAPipelineOfNumberedStages)
{
    insertNumbers(4);
    dbc::Results results;

    client().aggregate(database(), "c", matchSorted(true), results);

    EXPECT_EQ(ids(results), (Numbers{3, 2}));
}

TEST_F(DocumentAggregate, AppendsToTheResultsInTheListAndOmitsEmptyDocuments)
{
    scratch().insert("c", R"({"_id": 1, "a": null})");
    scratch().insert("c", R"({"_id": 2, "a": 5})");
    dbc::Results results;
    auto* const first = new ObjectProperties;
    static_cast<std::list<ObjectProperties*>&>(results) = {first};

    client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) {
                           stage.beginGroup("$project");
                           stage.setValueInt32("_id", 0);
                           stage.setValueInt32("a", 1);
                       }),
                       results);

    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(&results.front(), first);
    EXPECT_EQ(results.back().valueAsInt32("a", 0), 5);
}

TEST_F(DocumentAggregate, RejectedByTheServerThrowsItsTextAndCode)
{
    insertNumbers(1);
    dbc::Results results;

    const std::string text = thrownText([&] {
        client().aggregate(database(), "c",
                           pipeline([](ObjectProperties& stage) { stage.setValueInt32("$noSuchStage", 1); }), results);
    });

    EXPECT_EQ(text.rfind("runtime_error: Aggregation error.: ", 0), 0U) << text;
    EXPECT_NE(text.find("(code: "), std::string::npos) << text;
    EXPECT_EQ(results.size(), 0U);
}

} // namespace
} // namespace test_support
