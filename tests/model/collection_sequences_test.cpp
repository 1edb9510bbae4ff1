// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Random sequences of operations on a collection of the real server and on a model in memory. After every operation its
// result and all documents are compared. A difference is shrunk to a short sequence.
//
// DATABASE_CLIENT_TEST_ROUNDS: how many sequences; DATABASE_CLIENT_TEST_SEED: of the first one.

#include "comparison.h"
#include "dbc/collection.h"
#include "environment.h"
#include "sequences.h"
#include "shared_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using dbc::Bulk;
using dbc::Collection;
using dbc::Value;
using test_support::sharedClient;
using test_support::sharedScratch;
using test_support::TestServer;

constexpr std::size_t ids = 8;
constexpr std::size_t stepsOfASequence = 40;

/// A document without its "_id": numbers by their key.
using Fields = std::map<std::string, int>;
using Documents = std::map<int, Fields>;

struct State
{
    State();
    ~State() { library.drop(); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    Collection library;
    Documents model;
    int replacements = 0; // so that no replacement is the document that it replaces
    Comparison comparison;
};

struct Step
{
    std::string name;
    void (*take)(State&, const Operation&);
};

Collection collection()
{
    DataBaseClient& client = sharedClient(TestServer::instance().directUri());
    return {client, sharedScratch().name(), "c"};
}

State::State() : library(collection()) {}

std::string textOf(int id, const Fields& fields)
{
    std::string text = "{_id: " + std::to_string(id);
    for (const auto& [key, number] : fields)
        text.append(", ").append(key).append(": ").append(std::to_string(number));
    return text + "}";
}

/// The fields in the order of their keys: where a new field goes is up to the server.
std::string textOf(const Value& document)
{
    Fields fields;
    int id = -1;
    for (const auto& [key, value] : document.fields())
    {
        if (key == "_id")
            id = value.get<int>().value_or(-1);
        else
            fields[std::string(key)] = value.get<int>().value_or(-1);
    }
    return textOf(id, fields);
}

std::string textOf(const std::optional<Value>& document)
{
    return document ? textOf(*document) : "nothing";
}

std::string textOf(const Documents& documents)
{
    std::string text;
    for (const auto& [id, fields] : documents)
        text += textOf(id, fields);
    return text;
}

int idOf(const Operation& operation)
{
    return static_cast<int>(operation.subject);
}

std::string fieldOf(const Operation& operation)
{
    return std::string(1, static_cast<char>('a' + operation.other % 3));
}

int numberOf(const Operation& operation)
{
    return static_cast<int>(operation.target % 4);
}

bool isOdd(const Operation& operation)
{
    return (operation.index + static_cast<int>(operation.text.size())) % 2 != 0;
}

/// A filter, and the rule that it stands for.
struct Filter
{
    Value value;
    std::function<bool(int id, const Fields&)> matches;
};

Filter filterOf(const Operation& operation)
{
    const std::string field = fieldOf(operation);
    const int number = numberOf(operation);
    const auto holds = [field](const Fields& fields, auto rule) {
        const auto found = fields.find(field);
        return found != fields.end() && rule(found->second);
    };
    switch (operation.index)
    {
    case 0:
        return {Value{{field, number}},
                [=](int, const Fields& f) { return holds(f, [=](int held) { return held == number; }); }};
    case 1:
        return {Value{{field, {{"$gte", number}}}},
                [=](int, const Fields& f) { return holds(f, [=](int held) { return held >= number; }); }};
    case 2:
        return {Value{{field, {{"$exists", number % 2 == 0}}}},
                [=](int, const Fields& f) { return (f.count(field) > 0) == (number % 2 == 0); }};
    case 3:
        return {Value{{"_id", {{"$in", dbc::array({idOf(operation), number})}}}},
                [=, id = idOf(operation)](int held, const Fields&) { return held == id || held == number; }};
    case 4:
        return {Value{{"$or", dbc::array({Value{{"_id", {{"$lt", number}}}}, Value{{field, number}}})}},
                [=](int held, const Fields& f) {
                    return held < number || holds(f, [=](int other) { return other == number; });
                }};
    default:
        return {Value{}, [](int, const Fields&) { return true; }};
    }
}

std::vector<int> matching(const State& state, const Filter& filter)
{
    std::vector<int> found;
    for (const auto& [id, fields] : state.model)
    {
        if (filter.matches(id, fields))
            found.push_back(id);
    }
    return found;
}

void insertOne(State& s, const Operation& o)
{
    const Fields fields{{fieldOf(o), numberOf(o)}};
    const bool isNew = s.model.emplace(idOf(o), fields).second;
    bool isInserted = true;
    try
    {
        s.library.insertOne({{"_id", idOf(o)}, {fieldOf(o), numberOf(o)}});
    }
    catch (const dbc::ServerError& error)
    {
        isInserted = false;
        s.comparison.same("kind of the error", error.kind() == dbc::ErrorKind::DuplicateKey, true);
    }
    s.comparison.same("inserted", isInserted, isNew);
}

void insertMany(State& s, const Operation& o)
{
    dbc::InsertManyOptions options;
    options.ordered = isOdd(o);
    std::vector<Value> documents;
    std::string refused;
    std::int64_t inserted = 0;
    for (const std::size_t id : {o.subject, o.other, o.target})
    {
        documents.push_back(Value{{"_id", static_cast<int>(id)}, {"c", numberOf(o)}});
        if (options.ordered && !refused.empty())
            continue;
        if (s.model.emplace(static_cast<int>(id), Fields{{"c", numberOf(o)}}).second)
            ++inserted;
        else
            refused += std::to_string(documents.size() - 1);
    }
    std::string errors;
    std::int64_t count = 0;
    try
    {
        count = s.library.insertMany(documents, options).inserted;
    }
    catch (const dbc::BulkError& error)
    {
        count = error.result().inserted;
        s.comparison.same("ids", static_cast<std::int64_t>(error.result().insertedIds.size()), inserted);
        for (const dbc::WriteError& one : error.errors())
            errors += std::to_string(one.index);
    }
    s.comparison.same("inserted", count, inserted);
    s.comparison.same("refused", errors, refused);
}

void set(State& s, const Operation& o)
{
    dbc::UpdateOptions options;
    options.upsert = isOdd(o);
    const auto found = s.model.find(idOf(o));
    const bool exists = found != s.model.end();
    const bool changes = exists && (found->second.count(fieldOf(o)) == 0 || found->second[fieldOf(o)] != numberOf(o));
    if (exists || options.upsert)
        s.model[idOf(o)][fieldOf(o)] = numberOf(o);

    const dbc::UpdateResult result =
        s.library.updateOne({{"_id", idOf(o)}}, {{"$set", {{fieldOf(o), numberOf(o)}}}}, options);

    s.comparison.same("matched", result.matched, exists ? 1 : 0);
    s.comparison.same("modified", result.modified, changes ? 1 : 0);
    s.comparison.same("upserted", result.upsertedId.has_value(), !exists && options.upsert);
}

void increment(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    const std::vector<int> found = matching(s, filter);
    for (const int id : found)
        s.model[id][fieldOf(o)] += 2;

    const dbc::UpdateResult result = s.library.updateMany(filter.value, {{"$inc", {{fieldOf(o), 2}}}});

    s.comparison.same("matched", result.matched, static_cast<std::int64_t>(found.size()));
    s.comparison.same("modified", result.modified, static_cast<std::int64_t>(found.size()));
}

void unset(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    std::int64_t modified = 0;
    const std::vector<int> found = matching(s, filter);
    for (const int id : found)
        modified += static_cast<std::int64_t>(s.model[id].erase(fieldOf(o)));

    const dbc::UpdateResult result = s.library.updateMany(filter.value, {{"$unset", {{fieldOf(o), ""}}}});

    s.comparison.same("matched", result.matched, static_cast<std::int64_t>(found.size()));
    s.comparison.same("modified", result.modified, modified);
}

void replace(State& s, const Operation& o)
{
    dbc::ReplaceOptions options;
    options.upsert = isOdd(o);
    const bool exists = s.model.count(idOf(o)) > 0;
    const int number = s.replacements++;
    if (exists || options.upsert)
        s.model[idOf(o)] = {{"r", number}, {fieldOf(o), numberOf(o)}};

    const dbc::UpdateResult result =
        s.library.replaceOne({{"_id", idOf(o)}}, {{"r", number}, {fieldOf(o), numberOf(o)}}, options);

    s.comparison.same("matched", result.matched, exists ? 1 : 0);
    s.comparison.same("modified", result.modified, exists ? 1 : 0);
    s.comparison.same("upserted", result.upsertedId == Value(idOf(o)), !exists && options.upsert);
}

void removeOne(State& s, const Operation& o)
{
    const auto removed = static_cast<std::int64_t>(s.model.erase(idOf(o)));
    s.comparison.same("removed", s.library.removeOne({{"_id", idOf(o)}}).removed, removed);
}

void removeMany(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    const std::vector<int> found = matching(s, filter);
    for (const int id : found)
        s.model.erase(id);
    s.comparison.same("removed", s.library.removeMany(filter.value).removed, static_cast<std::int64_t>(found.size()));
}

// By a field, documents without it first, and then by "_id".
void find(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    const bool isDescending = isOdd(o);
    dbc::FindOptions options;
    options.sort = {{fieldOf(o), isDescending ? dbc::Order::Descending : dbc::Order::Ascending}, {"_id"}};
    options.skip = numberOf(o) % 3;
    options.limit = static_cast<std::int64_t>(o.target % 5);
    options.batchSize = 2;
    std::vector<int> found = matching(s, filter);
    const auto sortKey = [&](int id) {
        const auto field = s.model[id].find(fieldOf(o));
        return field == s.model[id].end() ? -1 : field->second;
    };
    std::stable_sort(found.begin(), found.end(), [&](int left, int right) {
        return isDescending ? sortKey(left) > sortKey(right) : sortKey(left) < sortKey(right);
    });
    std::string expected;
    for (std::size_t index = 0; index < found.size(); ++index)
    {
        const auto position = static_cast<std::int64_t>(index) - options.skip;
        if (position >= 0 && (options.limit == 0 || position < options.limit))
            expected += textOf(found[index], s.model[found[index]]);
    }

    std::string documents;
    for (const Value& document : s.library.find(filter.value, options))
        documents += textOf(document);

    s.comparison.same("found", documents, expected);
}

void countAndDistinct(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    const std::vector<int> found = matching(s, filter);
    std::set<int> numbers;
    for (const int id : found)
    {
        const auto field = s.model[id].find(fieldOf(o));
        if (field != s.model[id].end())
            numbers.insert(field->second);
    }

    s.comparison.same("count", s.library.count(filter.value), static_cast<std::int64_t>(found.size()));
    std::set<int> distinct;
    for (const Value& value : s.library.distinct(fieldOf(o), filter.value))
        distinct.insert(value.get<int>().value_or(-1));
    s.comparison.same("distinct", distinct == numbers, true);
}

void findOneAndUpdate(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    dbc::FindOneAndUpdateOptions options;
    options.sort = {{"_id"}};
    options.which = isOdd(o) ? dbc::Return::After : dbc::Return::Before;
    std::string expected = "nothing";
    const std::vector<int> found = matching(s, filter);
    if (!found.empty())
    {
        Fields& fields = s.model[found.front()];
        const Fields before = fields;
        fields["c"] = numberOf(o);
        expected = textOf(found.front(), isOdd(o) ? fields : before);
    }

    s.comparison.same("document",
                      textOf(s.library.findOneAndUpdate(filter.value, {{"$set", {{"c", numberOf(o)}}}}, options)),
                      expected);
}

void findOneAndRemove(State& s, const Operation& o)
{
    const Filter filter = filterOf(o);
    dbc::FindOneAndRemoveOptions options;
    options.sort = {{"_id", dbc::Order::Descending}};
    std::string expected = "nothing";
    const std::vector<int> found = matching(s, filter);
    if (!found.empty())
    {
        expected = textOf(found.back(), s.model[found.back()]);
        s.model.erase(found.back());
    }

    s.comparison.same("document", textOf(s.library.findOneAndRemove(filter.value, options)), expected);
}

// Insert, replace as an upsert, increment, remove; the insert may be refused.
void bulkWrite(State& s, const Operation& o)
{
    const int inserted = idOf(o);
    const int replaced = static_cast<int>(o.other);
    const int number = s.replacements++;
    const Filter filter = filterOf(o);
    dbc::BulkUpdateOptions none;
    dbc::BulkReplaceOptions upsert;
    upsert.upsert = true;
    dbc::BulkOptions options;
    options.ordered = isOdd(o);
    Bulk bulk;
    bulk.insertOne({{"_id", inserted}, {"a", 1}})
        .replaceOne({{"_id", replaced}}, {{"r", number}}, upsert)
        .updateMany(filter.value, {{"$inc", {{"a", 1}}}}, none)
        .removeOne({{"_id", numberOf(o)}});

    dbc::BulkResult expected;
    const bool isNew = s.model.emplace(inserted, Fields{{"a", 1}}).second;
    expected.inserted = isNew ? 1 : 0;
    if (isNew || !options.ordered)
    {
        const bool exists = s.model.count(replaced) > 0;
        s.model[replaced] = {{"r", number}};
        const std::vector<int> found = matching(s, filter);
        for (const int id : found)
            ++s.model[id]["a"];
        expected.matched = (exists ? 1 : 0) + static_cast<std::int64_t>(found.size());
        expected.modified = expected.matched;
        if (!exists)
            expected.upsertedIds.push_back({1, Value(replaced)});
        expected.removed = static_cast<std::int64_t>(s.model.erase(numberOf(o)));
    }

    dbc::BulkResult result;
    bool isRefused = false;
    try
    {
        result = s.library.bulkWrite(bulk, options);
    }
    catch (const dbc::BulkError& error)
    {
        isRefused = true;
        result = error.result();
        s.comparison.same("refused operations", error.errors().size(), std::size_t{1});
    }
    s.comparison.same("refused", isRefused, !isNew);
    s.comparison.same("inserted", result.inserted, expected.inserted);
    s.comparison.same("ids", result.insertedIds.size(), isNew ? std::size_t{1} : std::size_t{0});
    s.comparison.same("matched", result.matched, expected.matched);
    s.comparison.same("modified", result.modified, expected.modified);
    s.comparison.same("removed", result.removed, expected.removed);
    s.comparison.same("upserted", result.upsertedIds.size(), expected.upsertedIds.size());
    if (!result.upsertedIds.empty() && !expected.upsertedIds.empty())
        s.comparison.same("upserted id", result.upsertedIds[0].id == expected.upsertedIds[0].id, true);
}

const std::vector<Step>& steps()
{
    static const std::vector<Step> table{
        {"insertOne", insertOne},
        {"insertOne", insertOne},
        {"insertMany", insertMany},
        {"updateOne $set", set},
        {"updateMany $inc", increment},
        {"updateMany $unset", unset},
        {"replaceOne", replace},
        {"removeOne", removeOne},
        {"removeMany", removeMany},
        {"find", find},
        {"count, distinct", countAndDistinct},
        {"findOneAndUpdate", findOneAndUpdate},
        {"findOneAndRemove", findOneAndRemove},
        {"bulkWrite", bulkWrite},
    };
    return table;
}

void take(State& state, const Operation& operation)
{
    steps()[operation.kind].take(state, operation);
}

void compare(State& state)
{
    dbc::FindOptions options;
    options.sort = {{"_id"}};
    std::string documents;
    for (const Value& document : state.library.find({}, options))
        documents += textOf(document);
    state.comparison.same("documents", documents, textOf(state.model));
}

TEST(CollectionModel, BehavesAsTheServerInAnySequenceOfOperations)
{
    const System system = systemOf("collection", ids, steps(), take, compare);
    const std::size_t sequences = test_support::environmentNumber("DATABASE_CLIENT_TEST_ROUNDS", 10);
    const std::size_t firstSeed = test_support::environmentNumber("DATABASE_CLIENT_TEST_SEED", 1);
    for (std::size_t seed = firstSeed; seed < firstSeed + sequences; ++seed)
    {
        std::mt19937_64 random(seed);
        std::vector<Operation> sequence(stepsOfASequence);
        for (Operation& operation : sequence)
            operation = randomOperation(random, steps().size(), ids);
        if (!system.run(sequence))
            continue;
        const std::vector<Operation> shortest = shrink(system, sequence);
        std::string text;
        for (const Operation& operation : shortest)
            text += "  " + describe(system.operations[operation.kind], operation) + "\n";
        const std::optional<Difference> difference = system.run(shortest);
        FAIL() << "seed " << seed << ", shrunk to " << shortest.size() << " operations:\n"
               << text << (difference ? difference->text : "the difference does not come again");
    }
}

} // namespace
