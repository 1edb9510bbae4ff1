// Clients of the driver whose connections are made here: what becomes of a name with two addresses.

#include "database_client/DatabaseDriverManager.h"
#include "database_client/host_addresses.h"
#include "database_client/stream_initiator.h"

#include "ports.h"

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <cstdint>
#include <string>

namespace {

// The same address twice: what matters is that there are two.
constexpr const char* nameOfTwo = "two.example";

// What a command to that port of the name ends with.
std::string failureAt(std::uint16_t port, const std::string& options)
{
    DatabaseDriverManager::init();
    bson_error_t error{};
    const std::string text = std::string("mongodb://") + nameOfTwo + ":" + std::to_string(port) + "/" + options;
    const UriHandle uri(mongoc_uri_new_with_error(text.c_str(), &error));
    const ClientHandle client = newCheckedClient(*uri, error);
    OwnedBson ping;
    BSON_APPEND_INT32(ping.get(), "ping", 1);
    EXPECT_FALSE(mongoc_client_command_simple(client.get(), "admin", ping.get(), nullptr, nullptr, &error));
    return error.message;
}

TEST(NameOfTwoAddresses, ThatBothRefuseIsRefused)
{
    const RefusingPort port;
    const std::string text = failureAt(port.number, "");
    EXPECT_NE(text.find("connection refused calling hello on 'two.example:" + std::to_string(port.number) + "'"),
              std::string::npos)
        << text;
}

TEST(NameOfTwoAddresses, IsConnectedToTheOneThatAnswers)
{
    ListeningPort port;
    const std::string text = failureAt(port.number, "?connectTimeoutMS=300"); // it says nothing after that
    EXPECT_NE(text.find("socket timeout calling hello on"), std::string::npos) << text;
    EXPECT_TRUE(port.accepts());
}

TEST(NameOfTwoAddresses, ThatDoNotAnswerInTimeIsAsLate)
{
    const SilentPort port;
    const std::string text = failureAt(port.number, "?connectTimeoutMS=300");
    EXPECT_NE(text.find("connection timeout calling hello on 'two.example:" + std::to_string(port.number) + "'"),
              std::string::npos)
        << text;
}

TEST(HostAddresses, OfASocketInTheFileSystemAreItsPath)
{
    const UriHandle uri(mongoc_uri_new("mongodb://%2Ftmp%2Fserver.sock/"));
    const HostAddresses addresses(*mongoc_uri_get_hosts(uri.get()));
    ASSERT_NE(addresses.first(), nullptr);
    EXPECT_EQ(addresses.first()->ai_family, AF_UNIX);
    EXPECT_EQ(addresses.first()->ai_next, nullptr);
    const auto* const place = reinterpret_cast<const sockaddr_un*>(addresses.first()->ai_addr);
    EXPECT_EQ(std::string(place->sun_path), "/tmp/server.sock");
}

TEST(HostAddresses, OfAPathLongerThanOneMayBeEndInTime)
{
    const std::string path(200, 'a');
    const UriHandle uri(mongoc_uri_new(("mongodb://%2F" + path + ".sock/").c_str()));
    const HostAddresses addresses(*mongoc_uri_get_hosts(uri.get()));
    const auto* const place = reinterpret_cast<const sockaddr_un*>(addresses.first()->ai_addr);
    EXPECT_EQ(std::string(place->sun_path).size(), sizeof place->sun_path - 1);
}

TEST(HostAddresses, OfANameThatIsNoneAreNoneAndSaidWhy)
{
    const UriHandle uri(mongoc_uri_new("mongodb://nobody.invalid/"));
    const HostAddresses addresses(*mongoc_uri_get_hosts(uri.get()));
    EXPECT_EQ(addresses.first(), nullptr);
    EXPECT_NE(addresses.problem(), std::string());
}

TEST(TlsOptions, AreThoseOfTheConnectionString)
{
    const UriHandle uri(mongoc_uri_new("mongodb://h/?tlsCAFile=ca&tlsCertificateKeyFile=key&"
                                       "tlsCertificateKeyFilePassword=secret&tlsAllowInvalidHostnames=true"));
    const mongoc_ssl_opt_t options = tlsOptionsOf(*uri);
    EXPECT_STREQ(options.ca_file, "ca");
    EXPECT_STREQ(options.pem_file, "key");
    EXPECT_STREQ(options.pem_pwd, "secret");
    EXPECT_TRUE(options.allow_invalid_hostname);
    EXPECT_FALSE(options.weak_cert_validation);
}

TEST(TlsOptions, ThatAreInsecureCheckNothing)
{
    const UriHandle uri(mongoc_uri_new("mongodb://h/?tlsInsecure=true"));
    const mongoc_ssl_opt_t options = tlsOptionsOf(*uri);
    EXPECT_TRUE(options.allow_invalid_hostname);
    EXPECT_TRUE(options.weak_cert_validation);
    EXPECT_EQ(options.ca_file, nullptr);
}

} // namespace

// In the place of the name service's own, by the linker.
extern "C" int __real_getaddrinfo(const char* name, const char* port, const addrinfo* wanted, addrinfo** found);
extern "C" int __wrap_getaddrinfo(const char* name, const char* port, const addrinfo* wanted, addrinfo** found)
{
    if (std::string(name) != nameOfTwo)
        return __real_getaddrinfo(name, port, wanted, found);
    const int status = __real_getaddrinfo("127.0.0.1", port, wanted, found);
    addrinfo* second = nullptr;
    if (status == 0 && __real_getaddrinfo("127.0.0.1", port, wanted, &second) == 0)
        (*found)->ai_next = second;
    return status;
}
