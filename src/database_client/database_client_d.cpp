// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/database_client_d.h"

#include "database_client/DatabaseDriverManager.h"
#include "database_client/sendable.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <stdexcept>
#include <string>

DataBaseClientPrivate::DataBaseClientPrivate() { DatabaseDriverManager::init(); }
DataBaseClientPrivate::~DataBaseClientPrivate() = default;

std::string DataBaseClientPrivate::uri(const std::string& host, const int& port, const std::string& user,
                                       const std::string& password, const std::string& database)
{
    std::string text = "mongodb://";
    if (!user.empty() && !password.empty())
        text.append(user).append(":").append(password).append("@");
    return text.append(host).append(":").append(std::to_string(port)).append("/").append(database);
}

void DataBaseClientPrivate::connect(const std::string& uri)
{
    disconnect();
    // In two steps, because mongoc_client_new() logs an invalid connection string, with the password, to standard
    // error.
    bson_error_t unread{};
    const UriHandle parsed(mongoc_uri_new_with_error(uri.c_str(), &unread));
    if (parsed)
        m_client.reset(mongoc_client_new_from_uri_with_error(parsed.get(), &unread));
    if (!m_client)
        throw_runtime_error("Connection failed", "", 0);
}

void DataBaseClientPrivate::getDatabaseName(std::string& name)
{
    name.clear();
    if (!m_client)
        return; // the driver aborts without a client
    if (const char* const database = mongoc_uri_get_database(mongoc_client_get_uri(m_client.get())))
        name.append(database);
}

std::string DataBaseClientPrivate::createId() const
{
    bson_oid_t id;
    bson_oid_init(&id, nullptr);
    char text[25];
    bson_oid_to_string(&id, text);
    return text;
}

void DataBaseClientPrivate::check_connection() const
{
    if (!m_client)
        throw std::invalid_argument("Connection is not established. Run connect before");
}

void DataBaseClientPrivate::check_argument(const std::string& value, const std::string& name)
{
    // The driver cuts a name at its first zero byte, and aborts if the name is then empty.
    if (value.c_str()[0] == '\0')
        throw std::invalid_argument(name + " is empty");
}

void DataBaseClientPrivate::throw_runtime_error(const std::string& message, const std::string& detail, int code)
{
    std::string text = message;
    if (!detail.empty())
        text.append(": ").append(detail);
    if (code != 0)
        text.append("(code: ").append(std::to_string(code)).append(")");
    throw std::runtime_error(text);
}

void DataBaseClientPrivate::toBson(const ObjectProperties& properties, OwnedBson& bson, const char* refusal)
{
    if (!appendSendable(properties, bson.get()))
        throw std::invalid_argument(refusal);
}
