// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/bulk.h"

#include "collection/bulk_state.h"
#include "collection/options_bson.h"
#include "collection/outgoing.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace dbc {
namespace {

constexpr const char* badDocument = "Bad properties";
constexpr const char* badFilter = "Bad condition";

} // namespace

void Bulk::State::add(Type type, const bson_t* filter, const bson_t* document, const bson_t* options)
{
    const auto append = [this](const bson_t* bson) {
        const std::size_t offset = bytes.size();
        bytes.insert(bytes.end(), bson_get_data(bson), bson_get_data(bson) + bson->len);
        return offset;
    };
    const std::size_t filterOffset = append(filter);
    const std::size_t documentOffset = append(document);
    operations.push_back({type, filterOffset, documentOffset, append(options)});
}

Bulk::Bulk() : d(std::make_unique<State>()) {}

Bulk::Bulk(Bulk&& other) noexcept = default;

Bulk& Bulk::operator=(Bulk&& other) noexcept = default;

Bulk::~Bulk() = default;

std::size_t Bulk::size() const noexcept { return d->operations.size(); }

Bulk& Bulk::insertOne(const DocumentRef& document)
{
    OutgoingBson bson;
    bson.convertForInsert(document, badDocument);
    d->add(State::Type::InsertOne, OwnedBson().get(), bson.get(), OwnedBson().get());
    return *this;
}

Bulk& Bulk::updateOne(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options)
{
    const OutgoingBson change(update, badDocument, OutgoingBson::Shape::ObjectOrArray);
    const OutgoingBson condition(filter, badFilter);
    d->add(State::Type::UpdateOne, condition.get(), change.get(), DriverOptions().add(options).get());
    return *this;
}

Bulk& Bulk::updateMany(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options)
{
    const OutgoingBson change(update, badDocument, OutgoingBson::Shape::ObjectOrArray);
    const OutgoingBson condition(filter, badFilter);
    d->add(State::Type::UpdateMany, condition.get(), change.get(), DriverOptions().add(options).get());
    return *this;
}

Bulk& Bulk::replaceOne(const DocumentRef& filter, const DocumentRef& document, const BulkReplaceOptions& options)
{
    const OutgoingBson replacement(document, badDocument);
    const OutgoingBson condition(filter, badFilter);
    d->add(State::Type::ReplaceOne, condition.get(), replacement.get(), DriverOptions().add(options).get());
    return *this;
}

Bulk& Bulk::removeOne(const DocumentRef& filter, const BulkRemoveOptions& options)
{
    const OutgoingBson condition(filter, badFilter);
    d->add(State::Type::RemoveOne, condition.get(), OwnedBson().get(), DriverOptions().add(options).get());
    return *this;
}

Bulk& Bulk::removeMany(const DocumentRef& filter, const BulkRemoveOptions& options)
{
    const OutgoingBson condition(filter, badFilter);
    d->add(State::Type::RemoveMany, condition.get(), OwnedBson().get(), DriverOptions().add(options).get());
    return *this;
}

struct BulkError::State
{
    BulkResult result;
    std::vector<WriteError> errors;
};

BulkError::BulkError(const std::string& message, ErrorDetails details, BulkResult result,
                     std::vector<WriteError> errors)
    : ServerError(message, std::move(details)),
      m_state(std::make_shared<State>(State{std::move(result), std::move(errors)}))
{}

BulkError::BulkError(const BulkError& other) noexcept = default;

BulkError& BulkError::operator=(const BulkError& other) noexcept = default;

BulkError::~BulkError() = default;

const BulkResult& BulkError::result() const noexcept { return m_state->result; }

const std::vector<WriteError>& BulkError::errors() const noexcept { return m_state->errors; }

} // namespace dbc
