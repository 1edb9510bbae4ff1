// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "connection_uri.h"
#include "database_client.h"
#include "dbc/database.h"
#include "dbc/errors.h"
#include "dbc/value.h"
#include "failure.h"
#include "host_walk.h"

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>

namespace {

// Prints one line per step. A step depends on the steps before it. So a failed step ends the check of its host, or the
// whole check if there is only one host.
class Doctor
{
public:
    explicit Doctor(const GlobalOptions& global) : m_uri(connectionString(global.connection)) {}

    int examine()
    {
        const ParsedUri parsed = parseUri(m_uri);
        const mongoc_uri_t* const uri = parsed.uri.get();
        if (uri)
            reportSuccess("connection string", "valid");
        else
            reportFailure("connection string", parsed.error.empty() ? "invalid" : parsed.error, uriForm);
        // A mongodb+srv:// connection string has no hosts here: the driver looks them up in DNS.
        if (!uri || !lookAtHosts(*uri))
            return ConnectionError;
        const int status = askServer(uri);
        return status == Success && m_isAnyMissed ? ConnectionError : status;
    }

private:
    // Checks every host, because a replica set also works if one of its members has failed.
    bool lookAtHosts(const mongoc_uri_t& uri)
    {
        std::set<std::string> seen;
        for (const auto* host = mongoc_uri_get_hosts(&uri); host; host = host->next)
            seen.insert(host->host_and_port);
        for (const auto* host = mongoc_uri_get_hosts(&uri); host; host = host->next)
        {
            if (count(lookAtHost(uri, *host)) && findsMembers(uri))
                lookAtMembers(uri, *host, seen);
        }
        m_isTlsReported = !seen.empty() && mongoc_uri_get_tls(&uri);
        if (m_isMemberUnresolved && !mongoc_check_version(1, 30, 0))
        {
            return reportFailure("server",
                                 std::string("skipped: libmongoc ") + mongoc_get_version() +
                                     " would hang, because the replica set lists a member whose name does not resolve",
                                 "add this member to the connection string, or use libmongoc 1.30 or later");
        }
        return m_isAnyReached || !m_isAnyMissed; // both false for mongodb+srv://
    }

    // False if the driver uses only this host: with "directConnection", or for one host without "replicaSet".
    static bool findsMembers(const mongoc_uri_t& uri)
    {
        const bool isSet = mongoc_uri_get_replica_set(&uri) || mongoc_uri_get_hosts(&uri)->next;
        return !mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_DIRECTCONNECTION, !isSet);
    }

    void lookAtMembers(const mongoc_uri_t& uri, const mongoc_host_list_t& host, std::set<std::string>& seen)
    {
        for (const std::string& member : membersNamedBy(uri, host))
        {
            const UriHandle address = parseUri("mongodb://" + member + "/").uri;
            if (!address || !seen.insert(mongoc_uri_get_hosts(address.get())->host_and_port).second)
                continue;
            reportSuccess("member", std::string(host.host_and_port) + " lists " + member);
            const HostState state = lookAtHost(uri, *mongoc_uri_get_hosts(address.get()));
            count(state);
            m_isMemberUnresolved = m_isMemberUnresolved || state == HostState::Unresolved;
        }
    }

    bool count(HostState state)
    {
        const bool isGood = state == HostState::Good;
        m_isAnyReached = m_isAnyReached || isGood;
        m_isAnyMissed = m_isAnyMissed || !isGood;
        return isGood;
    }

    int askServer(const mongoc_uri_t* uri)
    {
        const char* user = mongoc_uri_get_username(uri);
        try
        {
            DataBaseClient client;
            client.connect(m_uri);
            dbc::Database admin(client, "admin");
            const dbc::Value build = admin.command({{"buildInfo", 1}});
            reportTls(uri);
            // Needs a login if the server requires authentication.
            admin.command({{"listDatabases", 1}, {"nameOnly", true}});
            reportSuccess("login", user ? std::string("as ") + user : "not required");
            reportServer(build);
            return Success;
        }
        catch (const std::runtime_error& error)
        {
            const auto info = dbc::describe(error);
            switch (info.kind)
            {
            case dbc::ErrorKind::Authentication:
                reportTls(uri);
                reportFailure("login", info.text, "check user, password and authSource");
                return ConnectionError;
            case dbc::ErrorKind::NotAuthorized:
                reportFailure("login", info.text,
                              user ? "the user lacks a role: ask for one"
                                   : "the server requires authentication: use --user");
                return ServerRefused;
            case dbc::ErrorKind::Timeout:
            case dbc::ErrorKind::Network:
            case dbc::ErrorKind::NotConnected:
                adviseOnConnection(uri, info.text);
                return ConnectionError;
            case dbc::ErrorKind::BadArgument:
            case dbc::ErrorKind::DuplicateKey:
            case dbc::ErrorKind::NotFound:
            case dbc::ErrorKind::TooLarge:
            case dbc::ErrorKind::Other:
                break;
            }
            reportFailure("server", info.text, "see the server's log");
            return ServerRefused;
        }
    }

    void reportTls(const mongoc_uri_t* uri)
    {
        if (!m_isTlsReported)
        {
            reportSuccess("tls",
                          mongoc_uri_get_tls(uri) ? "handshake succeeded" : "not used; the traffic is not encrypted");
        }
        m_isTlsReported = true;
    }

    // Searches the text, because the driver's errors have no code for the reason.
    static void adviseOnConnection(const mongoc_uri_t* uri, const std::string& text)
    {
        const bool isTls = mongoc_uri_get_tls(uri);
        const bool isAboutTls = text.find("TLS") != std::string::npos || text.find("certificate") != std::string::npos;
        if (isTls && isAboutTls)
        {
            reportFailure("tls", text,
                          "check tlsCAFile, the host name in the certificate, and that the server supports TLS");
        }
        else if (mongoc_uri_get_replica_set(uri))
            reportFailure("server", text, "check that replicaSet is the name of the replica set");
        else if (mongoc_uri_get_hosts(uri) && mongoc_uri_get_hosts(uri)->next)
        {
            reportFailure("server", text,
                          "several hosts must be members of one replica set, or mongos; otherwise use one host");
        }
        else
        {
            reportFailure("server", text,
                          isTls ? "check that a MongoDB server with TLS listens there"
                                : "check that a MongoDB server listens there; if it requires TLS, add tls=true to the "
                                  "connection string");
        }
    }

    static void reportServer(const dbc::Value& build)
    {
        if (const auto version = build.get<std::string>("version"))
            reportSuccess("version", *version);
        if (const auto limit = build.get<std::int64_t>("maxBsonObjectSize"))
            reportSuccess("limit", "documents of up to " + std::to_string(*limit) + " bytes");
        if (build.contains("ferretdbVersion"))
        {
            reportSuccess("limit",
                          "arrays must have the keys 0, 1, 2 ...; undefined and null behave differently from MongoDB");
        }
    }

    const std::string m_uri;
    bool m_isTlsReported = false;
    bool m_isAnyReached = false;
    bool m_isAnyMissed = false;
    bool m_isMemberUnresolved = false;
};

} // namespace

void addDoctorCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    program
        .add_subcommand(
            "doctor",
            "Check address, port and TLS of each host, then the login and the server, and report what is wrong")
        ->callback([&global, &work] { work = [&global] { return Doctor(global).examine(); }; });
}
