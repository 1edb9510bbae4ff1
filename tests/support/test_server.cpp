// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"

#include "environment.h"
#include "spawn_settings.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace test_support {
namespace {

[[noreturn]] void fail(const std::string& what, const bson_error_t& error)
{
    throw std::runtime_error(what + ": " + error.message + " (code " + std::to_string(error.code) + ")");
}

void parse(OwnedBson& document, const std::string& json)
{
    bson_error_t error{};
    if (!bson_init_from_json(document.get(), json.c_str(), static_cast<ssize_t>(json.size()), &error))
        fail("not a document: " + json, error);
}

std::string relaxed(const bson_t* document)
{
    const BsonText text(bson_as_relaxed_extended_json(document, nullptr));
    return text ? text.get() : "";
}

ClientHandle openClient(const std::string& address)
{
    mongoc_init();
    bson_error_t error{};
    const UriHandle uri(mongoc_uri_new_with_error(address.c_str(), &error));
    if (!uri)
        fail("not a connection string: " + address, error);
    return ClientHandle(mongoc_client_new_from_uri(uri.get()));
}

/// @param address  address of the server that DATABASE_CLIENT_TEST_SERVER describes
ServerKind kindOf(const std::string& address)
{
    const std::string named = requiredVariable("DATABASE_CLIENT_TEST_SERVER");
    if (named == "given")
        return serverKindAt(address);
    return named == "ferretdb" ? ServerKind::FerretDbV1 : ServerKind::MongoDb;
}

/// Returns a different name in every process and in every call.
std::string uniqueName()
{
    static std::atomic<unsigned> calls{0};
    static const unsigned ofThisProcess = std::random_device()();
    char name[64];
    std::snprintf(name, sizeof name, "test_%ld_%08x_%u", static_cast<long>(::getpid()), ofThisProcess, calls++);
    return name;
}

} // namespace

ServerKind serverKindAt(const std::string& uri)
{
    const ClientHandle client = openClient(uri);
    OwnedBson command;
    OwnedBson reply;
    bson_error_t error{};
    parse(command, R"({"buildInfo": 1})");
    if (!mongoc_client_command_simple(client.get(), "admin", command.get(), nullptr, reply.get(), &error))
        fail("the server does not answer", error);
    return serverKindFrom(reply.get());
}

WireGateway::Rewrite rewriteFor(ServerKind kind)
{
    switch (kind)
    {
    case ServerKind::MongoDb:
        break;
    case ServerKind::FerretDbV1:
        return WireGateway::Rewrite::ForFerretDbV1;
    case ServerKind::FerretDbV2:
        return WireGateway::Rewrite::ForFerretDbV2;
    }
    return WireGateway::Rewrite::Nothing;
}

TestServer& TestServer::instance()
{
    static TestServer server;
    return server;
}

TestServer::TestServer()
    : m_directUri(requiredVariable("DATABASE_CLIENT_TEST_URI")),
      m_directAuthUri(requiredVariable("DATABASE_CLIENT_TEST_AUTH_URI")), m_kind(kindOf(m_directUri)),
      m_gateway(m_directUri, rewriteFor(m_kind)), m_authGateway(m_directAuthUri, rewriteFor(m_kind))
{}

ScratchDatabase::ScratchDatabase() : ScratchDatabase(TestServer::instance().directUri()) {}

ScratchDatabase::ScratchDatabase(const std::string& uri) : m_client(openClient(uri)), m_name(uniqueName()) {}

ScratchDatabase::~ScratchDatabase()
{
    const DatabaseHandle database(mongoc_client_get_database(m_client.get(), m_name.c_str()));
    // Dropping a database does not drop its users. A server without authentication may not have the commands.
    for (const std::string& user : m_users)
        mongoc_database_remove_user(database.get(), user.c_str(), nullptr);
    OwnedBson command;
    BSON_APPEND_INT32(command.get(), "dropAllUsersFromDatabase", 1);
    mongoc_database_command_simple(database.get(), command.get(), nullptr, nullptr, nullptr);
    bson_error_t error{};
    if (!mongoc_database_drop(database.get(), &error))
        std::fprintf(stderr, "database %s stays behind: %s\n", m_name.c_str(), error.message);
}

std::string ScratchDatabase::userName(const std::string& name)
{
    return m_users.emplace_back(m_name + "_" + name);
}

void ScratchDatabase::insert(const std::string& collection, const std::string& document)
{
    OwnedBson parsed;
    parse(parsed, document);
    const CollectionHandle target(mongoc_client_get_collection(m_client.get(), m_name.c_str(), collection.c_str()));
    bson_error_t error{};
    if (!mongoc_collection_insert_one(target.get(), parsed.get(), nullptr, nullptr, &error))
        fail("insert", error);
}

namespace {

template <typename Visit>
void visitDocuments(mongoc_client_t* client, const std::string& database, const std::string& collection,
                    const std::string& filter, const std::string& options, Visit visit)
{
    OwnedBson parsedFilter;
    OwnedBson parsedOptions;
    parse(parsedFilter, filter);
    parse(parsedOptions, options);
    const CollectionHandle source(mongoc_client_get_collection(client, database.c_str(), collection.c_str()));
    const CursorHandle cursor(
        mongoc_collection_find_with_opts(source.get(), parsedFilter.get(), parsedOptions.get(), nullptr));
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
        visit(document);
    bson_error_t error{};
    if (mongoc_cursor_error(cursor.get(), &error))
        fail("find", error);
}

} // namespace

std::vector<std::string> ScratchDatabase::documents(const std::string& collection, const std::string& filter,
                                                    const std::string& options) const
{
    std::vector<std::string> result;
    visitDocuments(m_client.get(), m_name, collection, filter, options,
                   [&](const bson_t* document) { result.push_back(relaxed(document)); });
    return result;
}

std::vector<Bytes> ScratchDatabase::documentBytes(const std::string& collection, const std::string& filter,
                                                  const std::string& options) const
{
    std::vector<Bytes> result;
    visitDocuments(m_client.get(), m_name, collection, filter, options, [&](const bson_t* document) {
        const std::uint8_t* data = bson_get_data(document);
        result.emplace_back(data, data + document->len);
    });
    return result;
}

std::size_t ScratchDatabase::count(const std::string& collection, const std::string& filter) const
{
    std::size_t found = 0;
    visitDocuments(m_client.get(), m_name, collection, filter, R"({"projection": {"_id": 1}})",
                   [&](const bson_t* /*document*/) { ++found; });
    return found;
}

std::vector<std::string> ScratchDatabase::collections() const
{
    const DatabaseHandle database(mongoc_client_get_database(m_client.get(), m_name.c_str()));
    bson_error_t error{};
    const std::unique_ptr<char*, DestroyWith<bson_strfreev>> names(
        mongoc_database_get_collection_names_with_opts(database.get(), nullptr, &error));
    if (!names)
        fail("listCollections", error);
    std::vector<std::string> result;
    for (char** name = names.get(); *name; ++name)
        result.emplace_back(*name);
    std::sort(result.begin(), result.end());
    return result;
}

std::string ScratchDatabase::run(const std::string& command) const
{
    OwnedBson parsed;
    OwnedBson reply;
    bson_error_t error{};
    parse(parsed, command);
    if (!mongoc_client_command_simple(m_client.get(), m_name.c_str(), parsed.get(), nullptr, reply.get(), &error))
        fail(command, error);
    return relaxed(reply.get());
}

bool ServerProcess::available()
{
    const char* program = std::getenv("DATABASE_CLIENT_TEST_SERVER_BINARY");
    return program && *program != '\0';
}

ServerProcess::ServerProcess() : ServerProcess(Tls()) {}

ServerProcess::ServerProcess(Tls tls) : m_tls(std::move(tls)), m_reservation(reservePort(m_port))
{
    requiredVariable("DATABASE_CLIENT_TEST_SERVER_BINARY");
    std::string directory = (std::filesystem::temp_directory_path() / "database_client-own-server.XXXXXX").string();
    if (!::mkdtemp(directory.data()))
        throw std::system_error(errno, std::generic_category(), "cannot make a directory for a server");
    m_directory = directory;
    std::filesystem::create_directory(m_directory + "/data");
    std::filesystem::create_directory(m_directory + "/state");
    start();
}

ServerProcess::~ServerProcess()
{
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

std::string ServerProcess::uri() const
{
    return "mongodb://127.0.0.1:" + std::to_string(m_port) + "/";
}

WireGateway::Rewrite ServerProcess::rewrite() const
{
    return rewriteFor(kindOf(uri()));
}

std::vector<std::string> ServerProcess::commandLine() const
{
    const std::string program = requiredVariable("DATABASE_CLIENT_TEST_SERVER_BINARY");
    const std::string port = std::to_string(m_port);
    std::vector<std::string> line{"setpriv", "--pdeathsig", "KILL", program};
    if (requiredVariable("DATABASE_CLIENT_TEST_SERVER") == "mongod")
    {
        line.insert(line.end(),
                    {"--dbpath", m_directory + "/data", "--bind_ip", "127.0.0.1", "--port", port, "--nounixsocket"});
        if (!m_tls.certificate.empty())
        {
            // mongod requires key and certificate in one file.
            const std::string both = m_directory + "/tls.pem";
            std::ofstream(both) << std::ifstream(m_tls.key).rdbuf() << std::ifstream(m_tls.certificate).rdbuf();
            line.insert(line.end(), {"--tlsMode", "requireTLS", "--tlsCertificateKeyFile", both, "--tlsCAFile",
                                     m_tls.authority, "--tlsAllowConnectionsWithoutCertificates"});
        }
        return line;
    }
    line.insert(line.end(),
                {"--handler=sqlite", "--sqlite-url=file:" + m_directory + "/data/",
                 "--state-dir=" + m_directory + "/state", "--debug-addr=-", "--telemetry=disable", "--log-level=warn"});
    const std::string address = "127.0.0.1:" + port;
    if (m_tls.certificate.empty())
        line.push_back("--listen-addr=" + address);
    else // Without the authority, because the server would then require certificates of its clients.
    {
        line.insert(line.end(), {"--listen-addr=", "--listen-tls=" + address,
                                 "--listen-tls-cert-file=" + m_tls.certificate, "--listen-tls-key-file=" + m_tls.key});
    }
    return line;
}

namespace {

bool answers(std::uint16_t port)
{
    try
    {
        connectTo("127.0.0.1", std::to_string(port));
        return true;
    }
    catch (const std::runtime_error&)
    {
        return false;
    }
}

} // namespace

void ServerProcess::start()
{
    if (m_process >= 0)
        return;
    m_process = SpawnSettings(m_directory + "/log", m_directory + "/log").spawn(commandLine());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!answers(m_port))
    {
        int status = 0;
        if (::waitpid(m_process, &status, WNOHANG) == m_process)
        {
            m_process = -1;
            throw std::runtime_error("the server ended at its start; see " + m_directory + "/log");
        }
        if (std::chrono::steady_clock::now() > end)
        {
            stop();
            throw std::runtime_error("the server does not answer; see " + m_directory + "/log");
        }
        ::poll(nullptr, 0, 10);
    }
}

void ServerProcess::stop()
{
    if (m_process < 0)
        return;
    // SIGTERM for mongod, because it writes its journal with a delay. FerretDB writes its file at once, and would wait
    // three seconds for open connections to end.
    ::kill(m_process, requiredVariable("DATABASE_CLIENT_TEST_SERVER") == "mongod" ? SIGTERM : SIGKILL);
    int status = 0;
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR)
    {}
    m_process = -1;
}

} // namespace test_support
