// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations that change documents: insert, update, remove.

#include "database_client.h"
#include "database_client/database_client_d.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"
#include "object_properties.h"

#include <stdexcept>
#include <string>

namespace {

// Returns false if the document is larger than libbson allows.
bool wrapInOperator(const std::string& operatorText, const OwnedBson& operand, OwnedBson& update)
{
    if (operatorText.empty())
        return bson_concat(update.get(), operand.get());
    return bson_append_document(update.get(), operatorText.c_str(), static_cast<int>(operatorText.size()),
                                operand.get());
}

} // namespace

void DataBaseClientPrivate::write(const std::string& database, const std::string& collection,
                                  const ObjectProperties& document, std::string& id)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(collection, "Collection name");

    OwnedBson bson;
    toBson(document, bson, "Bad properties");

    const CollectionHandle target = openCollection(database, collection);
    bson_oid_t newId;
    bson_oid_init(&newId, nullptr);
    // Appended also if the document has an "_id": callers depend on a new "_id" as the last field of every write.
    bson_append_oid(bson.get(), "_id", -1, &newId);
    char text[25];
    bson_oid_to_string(&newId, text);
    id = text; // before the insert, because callers read it after a failure too

    bson_error_t error{};
    if (!mongoc_collection_insert(target.get(), MONGOC_INSERT_NONE, bson.get(), nullptr, &error))
        throwDriverError("Error occurred while insert operation", error);
}

void DataBaseClientPrivate::update(const std::string& database, const std::string& collection,
                                   const ObjectProperties& query, const ObjectProperties& document,
                                   const UpdateFlag& flag, const UpdateCommand& command)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(collection, "Collection name");

    std::string operatorText;
    if (!stringCommand(command, operatorText))
        throw std::invalid_argument("Uncknown command");
    mongoc_update_flags_t mongoFlag = MONGOC_UPDATE_NONE;
    if (!toMongoUpdateFlag(flag, mongoFlag))
        throw std::invalid_argument("Uncknown update flag");

    OwnedBson operand;
    toBson(document, operand, "Bad properties");
    OwnedBson selector;
    toBson(query, selector, "Bad condition");

    const CollectionHandle target = openCollection(database, collection);
    OwnedBson update;
    if (!wrapInOperator(operatorText, operand, update))
        throw std::runtime_error("Error creating update document.");

    bson_error_t error{};
    if (!mongoc_collection_update(target.get(), mongoFlag, selector.get(), update.get(), nullptr, &error))
        throwDriverError("Updating failed", error);
}

void DataBaseClientPrivate::remove(const std::string& database, const std::string& collection,
                                   const ObjectProperties& query)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(collection, "Collection name");

    OwnedBson selector;
    toBson(query, selector, "Bad condition");

    const CollectionHandle target = openCollection(database, collection);
    bson_error_t error{};
    if (!mongoc_collection_remove(target.get(), MONGOC_REMOVE_NONE, selector.get(), nullptr, &error))
        throwDriverError("Error occurred while remove operation", error);
}

bool DataBaseClientPrivate::stringCommand(const UpdateCommand& command, std::string& text) const
{
    switch (command)
    {
    case UpdateCommandUndefined:
        return false;
    case UpdateCommandReplace:
        text.clear();
        return true;
    case UpdateCommandRename:
        text = "$rename";
        return true;
    case UpdateCommandSet:
        text = "$set";
        return true;
    case UpdateCommandUnset:
        text = "$unset";
        return true;
    case UpdateCommandAddToSet:
        text = "$addToSet";
        return true;
    case UpdateCommandPop:
        text = "$pop";
        return true;
    case UpdateCommandPull:
        text = "$pull";
        return true;
    case UpdateCommandPullAll:
        text = "$pullAll";
        return true;
    case UpdateCommandPush:
        text = "$push";
        return true;
    }
    return false;
}

bool DataBaseClientPrivate::toMongoUpdateFlag(const UpdateFlag& flag, mongoc_update_flags_t& mongoFlag) const
{
    switch (flag)
    {
    case UpdateFlagNone:
        mongoFlag = MONGOC_UPDATE_NONE;
        return true;
    case UpdateFlagUpsert:
        mongoFlag = MONGOC_UPDATE_UPSERT;
        return true;
    case UpdateFlagMultiUpdate:
        mongoFlag = MONGOC_UPDATE_MULTI_UPDATE;
        return true;
    }
    return false;
}
