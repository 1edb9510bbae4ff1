// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"

#include "database_client/DatabaseDriverManager.h"
#include "database_client/database_client_d.h"
#include "object_properties.h"

#include <istream>
#include <list>
#include <memory>
#include <string>
#include <utility>

void parseOldCollectionName(const std::string& fullName, std::string& database, std::string& collection)
{
    const std::string::size_type dot = fullName.find('.');
    // Without a dot, both results are the whole name: callers depend on it. Copies are made first, because an output
    // parameter may be the same string as the input.
    std::string before = fullName.substr(0, dot);
    std::string after = fullName.substr(dot == std::string::npos ? 0 : dot + 1);
    database = std::move(before);
    collection = std::move(after);
}

DataBaseClient* DataBaseClient::instance()
{
    // Static objects are destroyed in reverse order: the shared client must disconnect before the driver is cleaned up.
    DatabaseDriverManager::init();
    static std::shared_ptr<DataBaseClient> holder;
    if (!holder)
        holder = std::make_shared<DataBaseClient>();
    return holder.get();
}

std::string DataBaseClient::uri(const std::string& host, const int& port, const std::string& user,
                                const std::string& password, const std::string& database)
{
    return DataBaseClientPrivate::uri(host, port, user, password, database);
}

DataBaseClient::DataBaseClient() : d(std::make_unique<DataBaseClientPrivate>()) {}
DataBaseClient::~DataBaseClient() = default;

// These overloads call other virtual functions, so that an override in a subclass affects them too.

void DataBaseClient::connect(const std::string& database, const std::string& host, const int& port,
                             const std::string& user, const std::string& password)
{
    connect(uri(host, port, user, password, database));
}

void DataBaseClient::connect(const std::string& host, int port) { connect(uri(host, port, "", "", "")); }

void DataBaseClient::write(const std::string& database, const std::string& collection, const ObjectProperties& document)
{
    std::string id;
    write(database, collection, document, id);
}

void DataBaseClient::read(const std::string& database, const std::string& collection, const ObjectProperties& query,
                          std::list<ObjectProperties*>& results)
{
    find(database, collection, query, ObjectProperties(), results, 0, 0);
}

void DataBaseClient::read(const std::string& fullCollectionName, const ObjectProperties& query,
                          std::list<ObjectProperties*>& results)
{
    std::string database;
    std::string collection;
    parseOldCollectionName(fullCollectionName, database, collection);
    read(database, collection, query, results);
}

void DataBaseClient::write(const std::string& fullCollectionName, const ObjectProperties& document)
{
    std::string database;
    std::string collection;
    parseOldCollectionName(fullCollectionName, database, collection);
    write(database, collection, document);
}

void DataBaseClient::remove(const std::string& fullCollectionName, const ObjectProperties& query)
{
    std::string database;
    std::string collection;
    parseOldCollectionName(fullCollectionName, database, collection);
    remove(database, collection, query);
}

// All other functions forward to DataBaseClientPrivate.

void DataBaseClient::connect(const std::string& uri) { d->connect(uri); }
void DataBaseClient::disconnect() { d->disconnect(); }
bool DataBaseClient::isConnected() const { return d->isConnected(); }

void DataBaseClient::write(const std::string& database, const std::string& collection, const ObjectProperties& document,
                           std::string& id)
{
    d->write(database, collection, document, id);
}

void DataBaseClient::update(const std::string& database, const std::string& collection, const ObjectProperties& query,
                            const ObjectProperties& document, const UpdateFlag& flag, const UpdateCommand& command)
{
    d->update(database, collection, query, document, flag, command);
}

void DataBaseClient::find(const std::string& database, const std::string& collection, const ObjectProperties& query,
                          const ObjectProperties& projection, std::list<ObjectProperties*>& results, int limit,
                          int skip)
{
    d->find(database, collection, query, projection, results, limit, skip);
}

void DataBaseClient::aggregate(const std::string& database, const std::string& collection,
                               const ObjectProperties& pipeline, std::list<ObjectProperties*>& results)
{
    d->aggregate(database, collection, pipeline, results);
}

void DataBaseClient::remove(const std::string& database, const std::string& collection, const ObjectProperties& query)
{
    d->remove(database, collection, query);
}

void DataBaseClient::getDatabaseName(std::string& name) { d->getDatabaseName(name); }
std::string DataBaseClient::createId() const { return d->createId(); }

void DataBaseClient::addUser(const std::string& database, std::string user, const std::string& password,
                             const ObjectProperties& roles, const ObjectProperties& customData)
{
    d->addUser(database, std::move(user), password, roles, customData);
}

void DataBaseClient::updateUser(const std::string& database, std::string user, const ObjectProperties& roles,
                                const ObjectProperties& customData)
{
    d->updateUser(database, std::move(user), roles, customData);
}

void DataBaseClient::changeUserPassword(const std::string& database, std::string user, const std::string& password)
{
    d->changeUserPassword(database, std::move(user), password);
}

void DataBaseClient::removeUser(const std::string& database, std::string user)
{
    d->removeUser(database, std::move(user));
}

void DataBaseClient::readFile(const std::string& database, const std::string& gridFsCollection,
                              const std::string& fileName, std::iostream* stream)
{
    d->readFile(database, gridFsCollection, fileName, stream);
}

void DataBaseClient::writeFile(const std::string& database, const std::string& gridFsCollection,
                               const std::string& fileName, const std::string& inputFilePath)
{
    d->writeFile(database, gridFsCollection, fileName, inputFilePath);
}

void DataBaseClient::listFiles(const std::string& database, const std::string& gridFsCollection,
                               std::list<std::string>& names)
{
    d->listFiles(database, gridFsCollection, names);
}

void DataBaseClient::removeFile(const std::string& database, const std::string& gridFsCollection,
                                const std::string& fileName)
{
    d->removeFile(database, gridFsCollection, fileName);
}
