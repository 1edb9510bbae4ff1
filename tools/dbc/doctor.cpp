#include "commands.h"

#include "connection_uri.h"
#include "dbc/database.h"
#include "dbc/errors.h"
#include "failure.h"
#include "host_walk.h"

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>

namespace {

// One line a step. A step that fails ends the walk, since those behind it need it; of several hosts, that of its host.
class Doctor
{
public:
    explicit Doctor(const GlobalOptions& global) : m_uri(connectionString(global.connection)) {}

    int examine()
    {
        const ParsedUri parsed = parseUri(m_uri);
        const mongoc_uri_t* const uri = parsed.uri.get();
        if (uri)
            reportSuccess("string", "is a connection string");
        else
            reportFailure("string", parsed.error.empty() ? "cannot be read" : parsed.error, uriForm);
        // The hosts of a mongodb+srv:// string are in DNS, where the driver looks them up.
        if (!uri || !lookAtHosts(*uri))
            return ConnectionError;
        const int status = askServer(uri);
        return status == Success && m_isAnyMissed ? ConnectionError : status;
    }

private:
    // Every host is checked: a set that lost a member still answers, and nobody notices.
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
                                 std::string("not asked: libmongoc ") + mongoc_get_version() +
                                     " would hang, since the set names a member that cannot be resolved",
                                 "name this member in the connection string too, or use libmongoc 1.30 or later");
        }
        return m_isAnyReached || !m_isAnyMissed; // the list of a mongodb+srv:// string is empty until it is needed
    }

    // With one host and no set the driver takes this host alone.
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
            reportSuccess("member", std::string(host.host_and_port) + " names " + member);
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
            // What nobody may see without a login, where the server wants one.
            admin.command({{"listDatabases", 1}, {"nameOnly", true}});
            reportSuccess("login", user ? std::string("as ") + user : "not wanted by the server");
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
                              user ? "the user may not do this: ask for a role"
                                   : "the server wants a user: give --user");
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
                          mongoc_uri_get_tls(uri) ? "agreed on" : "not used; what is sent can be read on the way");
        }
        m_isTlsReported = true;
    }

    // The driver says only in words what went wrong behind the open port.
    static void adviseOnConnection(const mongoc_uri_t* uri, const std::string& text)
    {
        const bool isTls = mongoc_uri_get_tls(uri);
        const bool isAboutTls = text.find("TLS") != std::string::npos || text.find("certificate") != std::string::npos;
        if (isTls && isAboutTls)
        {
            reportFailure("tls", text,
                          "check tlsCAFile, and that the certificate is for this host; or the server has no TLS");
        }
        else if (mongoc_uri_get_replica_set(uri))
            reportFailure("server", text, "check that replicaSet is its name there");
        else if (mongoc_uri_get_hosts(uri) && mongoc_uri_get_hosts(uri)->next)
            reportFailure("server", text, "several hosts must be of one replica set, or mongos; else name one of them");
        else
        {
            reportFailure(
                "server", text,
                isTls ? "check that a server of this kind listens there, with TLS"
                      : "check that a server of this kind listens there; if it wants TLS, add tls=true to the string");
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
                          "arrays must have the keys 0, 1, 2 ...; undefined and null differ from other servers");
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
        .add_subcommand("doctor",
                        "Walk each host's address, port and TLS, then login and server, and say what is wrong")
        ->callback([&global, &work] { work = [&global] { return Doctor(global).examine(); }; });
}
