// TLS: the right and the wrong authority, the wrong name, and no TLS where it is wanted.

#include "database_client.h"
#include "object_properties.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using test_support::ServerProcess;

/// Authorities and certificates made for this run, with the openssl program, and removed at its end.
class Certificates
{
public:
    Certificates()
    {
        std::string directory = (std::filesystem::temp_directory_path() / "database_client-tls.XXXXXX").string();
        if (!mkdtemp(directory.data()))
            throw std::runtime_error("no directory for certificates");
        m_directory = directory;
        makeAuthority("right");
        makeAuthority("wrong");
        makeServer("here", "IP:127.0.0.1");
        makeServer("elsewhere", "DNS:elsewhere.example");
    }
    ~Certificates()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    Certificates(const Certificates&) = delete;
    Certificates& operator=(const Certificates&) = delete;

    std::string authority(const std::string& name) const { return m_directory + "/" + name + ".pem"; }
    ServerProcess::Tls server(const std::string& name) const
    {
        return {m_directory + "/" + name + ".pem", m_directory + "/" + name + ".key", authority("right")};
    }

private:
    void run(const std::string& arguments) const
    {
        const std::string command = "cd '" + m_directory + "' && openssl " + arguments + " >log 2>&1";
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("openssl " + arguments);
    }

    void makeAuthority(const std::string& name) const
    {
        run("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + name + " -keyout " + name + ".key -out " + name +
            ".pem");
    }

    void makeServer(const std::string& name, const std::string& address) const
    {
        std::ofstream(m_directory + "/" + name + ".ext") << "subjectAltName=" << address << '\n';
        run("req -newkey rsa:2048 -nodes -subj /CN=" + name + " -keyout " + name + ".key -out " + name + ".csr");
        run("x509 -req -days 2 -in " + name + ".csr -CA right.pem -CAkey right.key -CAcreateserial -extfile " + name +
            ".ext -out " + name + ".pem");
    }

    std::string m_directory;
};

class Tls : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (ServerProcess::available())
            certificates = std::make_unique<Certificates>();
    }
    static void TearDownTestSuite() { certificates.reset(); }

    void SetUp() override
    {
        if (!certificates)
            GTEST_SKIP() << "the server given by MONGODB_URI cannot be started with TLS";
    }

    // What becomes of a write: nothing, or the text of the exception.
    static std::string writeThrough(const std::string& uri)
    {
        DataBaseClient client;
        client.connect(uri + "&serverSelectionTimeoutMS=5000&connectTimeoutMS=2000");
        try
        {
            client.write("tls", "c", ObjectProperties());
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_EQ(std::string(error.what()).find("Error occurred while insert operation: "), 0U);
            return error.what();
        }
        return "";
    }

    static std::string trusting(const std::string& authority)
    {
        return "?tls=true&tlsCAFile=" + certificates->authority(authority);
    }

    static std::unique_ptr<Certificates> certificates;
};

std::unique_ptr<Certificates> Tls::certificates;

TEST_F(Tls, WorksWithTheAuthorityThatSignedTheServer)
{
    const ServerProcess server(certificates->server("here"));
    EXPECT_EQ(writeThrough(server.uri() + trusting("right")), "");
}

TEST_F(Tls, IsRefusedWithAnotherAuthority)
{
    const ServerProcess server(certificates->server("here"));
    EXPECT_NE(writeThrough(server.uri() + trusting("wrong")), "");
}

TEST_F(Tls, IsRefusedWithoutAnAuthority)
{
    const ServerProcess server(certificates->server("here"));
    EXPECT_NE(writeThrough(server.uri() + "?tls=true"), "");
}

TEST_F(Tls, IsRefusedWhenTheCertificateIsForAnotherHost)
{
    const ServerProcess server(certificates->server("elsewhere"));
    EXPECT_NE(writeThrough(server.uri() + trusting("right")), "");
    EXPECT_EQ(writeThrough(server.uri() + trusting("right") + "&tlsAllowInvalidHostnames=true"), "")
        << "the host name was the only reason";
}

TEST_F(Tls, IsRefusedWhenTheAuthorityCannotBeRead)
{
    const ServerProcess server(certificates->server("here"));
    EXPECT_NE(writeThrough(server.uri() + trusting("missing")), "");
}

TEST_F(Tls, WorksWithoutTheRevocationOfCertificates)
{
    const ServerProcess server(certificates->server("here"));
    for (const char* const option : {"&tlsDisableCertificateRevocationCheck=true", "&tlsDisableOCSPEndpointCheck=true"})
    {
        EXPECT_EQ(writeThrough(server.uri() + trusting("right") + option), "") << option;
        EXPECT_NE(writeThrough(server.uri() + trusting("wrong") + option), "") << option;
    }
}

TEST_F(Tls, IsNotLeftOutByTheClientOrTheServer)
{
    const ServerProcess server(certificates->server("here"));
    EXPECT_NE(writeThrough(server.uri() + "?tls=false"), "");
    const ServerProcess plain;
    EXPECT_NE(writeThrough(plain.uri() + trusting("right")), "");
}

} // namespace
