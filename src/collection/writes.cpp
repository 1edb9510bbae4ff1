// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations of a collection that change documents. All of them use the driver's bulk writes, so that commands are
// built and split, and results and errors read, in one way.

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/bulk_run.h"
#include "collection/bulk_state.h"
#include "collection/collection_state.h"
#include "collection/options_bson.h"
#include "collection/outgoing.h"
#include "dbc/bulk.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/value.h"
#include "driver/mongoc_handles.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <list>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace dbc {
namespace {

// insertMany sends a batch that reaches one of these limits. Servers accept 100,000 documents per command.
constexpr std::size_t batchBytes = 4U << 20U;
constexpr std::size_t batchDocuments = 100000;

using WriteType = Bulk::State::Type;

Value idOf(const bson_t* document)
{
    bson_iter_t id;
    return findField(document, "_id", &id) ? valueAt(id) : Value(nullptr);
}

// Runs one operation. @throws ServerError
BulkResult runOne(const CollectionHandle& target, const DriverOptions& options, bool bypassValidation,
                  const char* message, WriteType type, const bson_t* filter, const bson_t* document,
                  const bson_t* operationOptions)
{
    BulkRun run(target, options.get(), bypassValidation);
    if (!run.add(type, filter, document, operationOptions) || !run.execute())
        throw ServerError(message, run.error());
    BulkResult result;
    std::vector<WriteError> errors;
    run.report(0, result, errors);
    return result;
}

// Options is UpdateOptions or ReplaceOptions.
template <typename Options>
UpdateResult change(const CollectionHandle& target, WriteType type, const char* message, const DocumentRef& filter,
                    const DocumentRef& document, const Options& options)
{
    const OutgoingBson operand(document, "Bad properties",
                               std::is_same_v<Options, UpdateOptions> ? OutgoingBson::Shape::ObjectOrArray
                                                                      : OutgoingBson::Shape::Object);
    const OutgoingBson condition(filter, "Bad condition");

    DriverOptions driverOptions;
    driverOptions.add("let", options.let).add("comment", options.comment).add(options.writeConcern);
    DriverOptions operationOptions;
    operationOptions.addFlag("upsert", options.upsert).add("hint", options.hint).add("collation", options.collation);
    if constexpr (std::is_same_v<Options, UpdateOptions>)
        operationOptions.add("arrayFilters", options.arrayFilters);

    BulkResult all = runOne(target, driverOptions, options.bypassValidation, message, type, condition.get(),
                            operand.get(), operationOptions.get());
    UpdateResult result{all.matched, all.modified, std::nullopt, all.acknowledged};
    if (!all.upsertedIds.empty())
        result.upsertedId = std::move(all.upsertedIds.front().id);
    return result;
}

RemoveResult remove(const CollectionHandle& target, WriteType type, const DocumentRef& filter,
                    const RemoveOptions& options)
{
    const OutgoingBson condition(filter, "Bad condition");

    DriverOptions driverOptions;
    driverOptions.add("let", options.let).add("comment", options.comment).add(options.writeConcern);
    DriverOptions operationOptions;
    operationOptions.add("hint", options.hint).add("collation", options.collation);

    const BulkResult all =
        runOne(target, driverOptions, false, "Remove failed", type, condition.get(), nullptr, operationOptions.get());
    return {all.removed, all.acknowledged};
}

// Determines which inserts succeeded if some were rejected or the connection broke.
class InsertOutcome
{
public:
    // Adds a batch with an error, the inserts from `begin` to `end`. The driver counts the inserts that succeeded and
    // sends them in order. So the first ones without an error succeeded, up to that number.
    void add(std::size_t begin, std::size_t end, std::int64_t inserted, const std::vector<WriteError>& errors,
             std::size_t firstError)
    {
        m_isInserted.resize(end, true);
        for (std::size_t position = firstError; position < errors.size(); ++position)
        {
            if (errors[position].index < end)
                m_isInserted[errors[position].index] = false;
        }
        for (std::size_t index = begin; index < end; ++index)
        {
            if (m_isInserted[index] && --inserted < 0)
                m_isInserted[index] = false;
        }
    }

    void addAll(std::size_t end) { m_isInserted.resize(end, true); }

    bool operator[](std::size_t index) const { return m_isInserted[index]; }
    std::size_t size() const { return m_isInserted.size(); }

private:
    std::vector<bool> m_isInserted;
};

// Runs insertMany() in batches.
class InsertRun
{
public:
    InsertRun(const CollectionHandle& target, const InsertManyOptions& options) : m_target(target), m_options(options)
    {
        m_driverOptions.add("comment", options.comment).add(options.writeConcern).addOrder(options.ordered);
    }

    void add(const DocumentRef& document)
    {
        m_bson.convertForInsert(document, "Bad properties");
        if (!m_batch)
            m_batch.emplace(m_target, m_driverOptions.get(), m_options.bypassValidation);
        if (!m_batch->add(WriteType::InsertOne, nullptr, m_bson.get(), nullptr))
            refuse();
        if (m_options.returnIds)
            m_ids.push_back(idOf(m_bson.get()));
        ++m_batchDocuments;
        m_batchBytes += m_bson.get()->len;
        if (m_batchBytes >= batchBytes || m_batchDocuments == batchDocuments)
            send();
    }

    InsertManyResult finish()
    {
        if (m_batch)
            send();
        if (m_failure)
            fail();
        return {m_result.inserted, std::move(m_ids), m_result.acknowledged};
    }

private:
    void send()
    {
        const bool isDone = m_batch->execute();
        const std::int64_t insertedBefore = m_result.inserted;
        const std::size_t errorsBefore = m_errors.size();
        m_batch->report(m_offset, m_result, m_errors);
        const std::int64_t inserted = m_result.inserted - insertedBefore;
        const auto refused = static_cast<std::int64_t>(m_errors.size() - errorsBefore);
        if (!isDone && !m_failure)
            m_failure = m_batch->error();

        const std::size_t end = m_offset + m_batchDocuments;
        if (isDone)
            m_outcome.addAll(end);
        else
            m_outcome.add(m_offset, end, inserted, m_errors, errorsBefore);
        // An unordered insert continues after rejected documents. Any other error ends it.
        const bool mayGoOn =
            isDone || (!m_options.ordered && inserted + refused == static_cast<std::int64_t>(m_batchDocuments));
        m_offset = end;
        m_batchDocuments = 0;
        m_batchBytes = 0;
        m_batch.reset();
        if (!mayGoOn)
            fail();
    }

    // The driver rejects the document. Nothing of its batch has been sent.
    [[noreturn]] void refuse()
    {
        m_failure = m_batch->error();
        m_errors.push_back({m_offset + m_batchDocuments, m_failure->code, m_failure->kind, m_failure->text});
        fail();
    }

    [[noreturn]] void fail()
    {
        for (std::size_t index = 0; index < m_outcome.size() && m_options.returnIds; ++index)
        {
            if (m_outcome[index])
                m_result.insertedIds.push_back({index, std::move(m_ids[index])});
        }
        throw BulkError("Insert failed", *m_failure, std::move(m_result), std::move(m_errors));
    }

    const CollectionHandle& m_target;
    const InsertManyOptions& m_options;
    DriverOptions m_driverOptions;
    OutgoingBson m_bson;
    std::optional<BulkRun> m_batch;
    std::size_t m_batchDocuments = 0;
    std::size_t m_batchBytes = 0;
    std::size_t m_offset = 0; // number of documents in earlier batches
    std::vector<Value> m_ids;
    InsertOutcome m_outcome; // of the batches sent so far
    BulkResult m_result;
    std::vector<WriteError> m_errors;
    std::optional<ErrorDetails> m_failure; // the first error
};

// Adds the ids of the inserts from `begin` to `end` that succeeded. After an error, these are the first inserts without
// an error, up to the number that the driver counted, because it sends them in order.
void reportInsertedIds(const Bulk::State& bulk, std::size_t begin, std::size_t end, bool isDone, std::int64_t inserted,
                       const std::vector<WriteError>& errors, BulkResult& result)
{
    std::vector<bool> isRefused(end);
    for (const WriteError& error : errors)
    {
        if (error.index < end)
            isRefused[error.index] = true;
    }
    for (std::size_t index = begin; index < end && (isDone || inserted > 0); ++index)
    {
        const Bulk::State::Operation& operation = bulk.operations[index];
        if (operation.type != WriteType::InsertOne || isRefused[index])
            continue;
        const StoredBson document(bulk, operation.document);
        result.insertedIds.push_back({index, idOf(&document.bson)});
        --inserted;
    }
}

enum class Command
{
    Insert,
    Update,
    Delete
};

Command commandOf(WriteType type)
{
    switch (type)
    {
    case WriteType::InsertOne:
        break;
    case WriteType::UpdateOne:
    case WriteType::UpdateMany:
    case WriteType::ReplaceOne:
        return Command::Update;
    case WriteType::RemoveOne:
    case WriteType::RemoveMany:
        return Command::Delete;
    }
    return Command::Insert;
}

// The operations of a Bulk from `begin` to `end`. They are one bulk write of the driver.
struct BulkPart
{
    BulkPart(std::size_t first, std::size_t last, const CollectionHandle& target, const bson_t* options,
             bool bypassValidation)
        : begin(first), end(last), run(target, options, bypassValidation)
    {}
    std::size_t begin;
    std::size_t end;
    BulkRun run;
};

// Returns the end of the part that begins at `begin`. An ordered write is one part. An unordered write has one part per
// command, because the driver loses the error of a command if a later command succeeds. A part stays below the server's
// limits of 100,000 operations and 48 MB, so that the driver does not split it into several commands.
std::size_t endOfPart(const Bulk::State& bulk, std::size_t begin, bool isOrdered)
{
    constexpr std::size_t partBytes = 32U << 20U; // leaves room for the other fields of each operation
    const std::vector<Bulk::State::Operation>& operations = bulk.operations;
    if (isOrdered)
        return operations.size();
    const auto behind = [&](std::size_t index) {
        return index + 1 < operations.size() ? operations[index + 1].filter : bulk.bytes.size();
    };
    const std::size_t last = std::min(operations.size(), begin + batchDocuments);
    std::size_t end = begin + 1;
    while (end < last && commandOf(operations[end].type) == commandOf(operations[begin].type) &&
           behind(end) - operations[begin].filter <= partBytes)
        ++end;
    return end;
}

} // namespace

InsertOneResult Collection::insertOne(const DocumentRef& document, const InsertOneOptions& options)
{
    const CollectionHandle target = d->open();
    OutgoingBson bson;
    bson.convertForInsert(document, "Bad properties");

    DriverOptions driverOptions;
    driverOptions.add("comment", options.comment).add(options.writeConcern);
    const BulkResult all = runOne(target, driverOptions, options.bypassValidation, "Insert failed",
                                  WriteType::InsertOne, nullptr, bson.get(), nullptr);
    return {idOf(bson.get()), all.acknowledged};
}

InsertManyResult Collection::insertAll(const std::function<void(const Add&)>& produce, const InsertManyOptions& options)
{
    const CollectionHandle target = d->open();
    InsertRun run(target, options);
    produce([&run](const DocumentRef& document) { run.add(document); });
    return run.finish();
}

InsertManyResult Collection::insertMany(std::initializer_list<DocumentRef> documents, const InsertManyOptions& options)
{
    return insertMany<std::initializer_list<DocumentRef>&>(documents, options);
}

UpdateResult Collection::updateOne(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options)
{
    return change(d->open(), WriteType::UpdateOne, "Update failed", filter, update, options);
}

UpdateResult Collection::updateMany(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options)
{
    return change(d->open(), WriteType::UpdateMany, "Update failed", filter, update, options);
}

UpdateResult Collection::replaceOne(const DocumentRef& filter, const DocumentRef& document,
                                    const ReplaceOptions& options)
{
    return change(d->open(), WriteType::ReplaceOne, "Replace failed", filter, document, options);
}

RemoveResult Collection::removeOne(const DocumentRef& filter, const RemoveOptions& options)
{
    return remove(d->open(), WriteType::RemoveOne, filter, options);
}

RemoveResult Collection::removeMany(const DocumentRef& filter, const RemoveOptions& options)
{
    return remove(d->open(), WriteType::RemoveMany, filter, options);
}

BulkResult Collection::bulkWrite(const Bulk& bulk, const BulkOptions& options)
{
    const CollectionHandle target = d->open();
    const Bulk::State& state = BulkAccess::stateOf(bulk);
    BulkResult result;
    if (state.operations.empty())
        return result;

    DriverOptions driverOptions;
    driverOptions.add("let", options.let).add("comment", options.comment).add(options.writeConcern);
    driverOptions.addOrder(options.ordered);
    std::list<BulkPart> parts;
    for (std::size_t index = 0; index < state.operations.size(); ++index)
    {
        if (parts.empty() || index == parts.back().end)
        {
            parts.emplace_back(index, endOfPart(state, index, options.ordered), target, driverOptions.get(),
                               options.bypassValidation);
        }
        BulkRun& run = parts.back().run;
        if (run.add(state, state.operations[index]))
            continue;
        const ErrorDetails details = run.error();
        throw BulkError("Bulk write failed", details, result, {{index, details.code, details.kind, details.text}});
    }

    std::vector<WriteError> errors;
    std::optional<ErrorDetails> failure; // the first error
    for (BulkPart& part : parts)
    {
        const std::int64_t insertedBefore = result.inserted;
        const bool isDone = part.run.execute();
        part.run.report(part.begin, result, errors);
        reportInsertedIds(state, part.begin, part.end, isDone, result.inserted - insertedBefore, errors, result);
        if (isDone)
            continue;
        const ErrorDetails details = part.run.error();
        if (!failure)
            failure = details;
        if (details.kind == ErrorKind::Network) // the next command would fail too
            break;
    }
    if (failure)
        throw BulkError("Bulk write failed", *failure, std::move(result), std::move(errors));
    return result;
}

} // namespace dbc
