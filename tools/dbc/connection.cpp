// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connection.h"

#include "connection_uri.h"
#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/connection_string.h"
#include "dbc/log.h"
#include "failure.h"
#include "interrupt.h"

#include <termios.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

namespace {

const std::string scheme = "mongodb://";
const std::string seedScheme = "mongodb+srv://";
const std::string localServer = "mongodb://127.0.0.1:27017/";

std::size_t schemeLength(const std::string& uri)
{
    for (const std::string& candidate : {scheme, seedScheme})
    {
        if (uri.compare(0, candidate.size(), candidate) == 0)
            return candidate.size();
    }
    throw Failure(UsageError, "a connection string begins with mongodb://");
}

std::string passwordOf(const ConnectionOptions& options)
{
    if (!options.passwordFile.empty())
        return readSecretFile(options.passwordFile);
    if (const char* password = std::getenv("DBC_PASSWORD"))
        return password;
    return promptSecret("Password of " + options.user + ": ");
}

// Turns off the echo of the terminal. Restores it in the destructor.
class HiddenInput
{
public:
    explicit HiddenInput(int terminal) : m_terminal(terminal)
    {
        if (::tcgetattr(m_terminal, &m_before) != 0)
            throw Failure(UsageError, "the terminal cannot hide the input");
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(m_terminal, TCSAFLUSH, &hidden);
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;
    ~HiddenInput() { ::tcsetattr(m_terminal, TCSAFLUSH, &m_before); }

private:
    int m_terminal;
    termios m_before = {};
};

} // namespace

std::string readSecretFile(const std::string& path)
{
    std::ifstream file(path);
    std::string secret;
    if (!std::getline(file, secret))
        throw Failure(UsageError, "cannot read a password from " + path);
    return secret;
}

std::string promptSecret(const std::string& question)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> terminal(std::fopen("/dev/tty", "r+"), &std::fclose);
    if (!terminal)
        throw Failure(UsageError, "no terminal to ask for a password: use a password file or an environment variable");
    std::string secret;
    {
        const InterruptWatch watch; // Ctrl-C must not leave the echo off
        // Before the prompt, because turning off the echo discards earlier input.
        const HiddenInput hidden(::fileno(terminal.get()));
        std::fputs(question.c_str(), terminal.get());
        std::fflush(terminal.get());
        for (int character = 0; (character = std::fgetc(terminal.get())) != EOF && character != '\n';)
            secret += static_cast<char>(character);
    }
    std::fputs("\n", terminal.get());
    throwIfInterrupted();
    return secret;
}

std::string connectionString(const ConnectionOptions& options)
{
    const std::string& uri = options.uri.empty() ? localServer : options.uri;
    if (options.user.empty() && !options.passwordFile.empty())
        throw Failure(UsageError, "--password-file requires --user");
    if (options.user.empty())
        return uri;
    const std::size_t begin = schemeLength(uri);
    if (uri.find('@', begin) != std::string::npos)
        throw Failure(UsageError, "--user and credentials in the connection string exclude each other");
    return uri.substr(0, begin) + dbc::percentEncoded(options.user) + ":" + dbc::percentEncoded(passwordOf(options)) +
           "@" + uri.substr(begin);
}

std::unique_ptr<DataBaseClient> connect(const std::string& uri)
{
    if (const ParsedUri parsed = parseUri(uri); !parsed.uri)
    {
        throw Failure(ConnectionError, "the connection string is invalid" +
                                           (parsed.error.empty() ? "" : ": " + parsed.error) + "; " + uriForm);
    }
    auto client = std::make_unique<DataBaseClient>();
    client->connect(uri);
    return client;
}

std::unique_ptr<DataBaseClient> connect(const ConnectionOptions& options)
{
    return connect(connectionString(options));
}

std::string defaultDatabase(DataBaseClient& client, const std::string& form)
{
    std::string database;
    client.getDatabaseName(database);
    if (database.empty())
    {
        throw Failure(UsageError, "no database: write " + form +
                                      ", or add the database to the connection string: mongodb://HOST/DATABASE");
    }
    return database;
}

const char* const collectionHelp = "DATABASE.COLLECTION, or COLLECTION in the database of the connection string";

dbc::Collection collectionOf(DataBaseClient& client, const std::string& name)
{
    const std::size_t dot = name.find('.');
    if (name.empty() || dot == 0 || dot == name.size() - 1)
        throw Failure(UsageError, "a collection is written DATABASE.COLLECTION");
    if (dot == std::string::npos)
        return {client, defaultDatabase(client, "DATABASE.COLLECTION"), name};
    return {client, name.substr(0, dot), name.substr(dot + 1)};
}

void silenceDriver()
{
    dbc::setLogHandler({});
}

void hidePasswords(int argumentCount, char** arguments)
{
    for (int index = 1; index < argumentCount; ++index)
    {
        char* const begin = std::strstr(arguments[index], "://");
        char* const end = begin ? std::strrchr(begin, '@') : nullptr;
        char* const colon = end ? std::strchr(begin + 3, ':') : nullptr;
        if (colon && colon < end)
            std::memset(colon + 1, '*', static_cast<std::size_t>(end - colon - 1));
    }
}
