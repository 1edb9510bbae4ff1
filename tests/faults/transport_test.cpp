// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// TLS with the right and the wrong certificate authority, with a wrong host name, and a client without TLS.

#include "certificates.h"
#include "connection_options.h"
#include "database_client.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using test_support::Certificates;
using test_support::ServerProcess;
using test_support::withOptions;

class Tls : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (!ServerProcess::available())
            return;
        certificates = std::make_unique<Certificates>();
        certificates->makeServer("here", "IP:127.0.0.1");
        certificates->makeServer("elsewhere", "DNS:elsewhere.example");
    }
    static void TearDownTestSuite() { certificates.reset(); }

    void SetUp() override
    {
        if (!certificates)
            GTEST_SKIP() << "the server given by MONGODB_URI cannot be started with TLS";
    }

    // The text of the exception; empty if the document is written.
    static std::string writeThrough(const std::string& uri)
    {
        DataBaseClient client;
        client.connect(withOptions(uri, "serverSelectionTimeoutMS=5000&connectTimeoutMS=2000"));
        const std::string text = test_support::thrownText([&] { client.write("tls", "c", ObjectProperties()); });
        EXPECT_TRUE(text.empty() || text.rfind("runtime_error: Error occurred while insert operation: ", 0) == 0)
            << text;
        return text;
    }

    static ServerProcess::Tls serverCertificate(const std::string& name)
    {
        return {certificates->certificate(name), certificates->key(name), certificates->certificate("right")};
    }

    static std::string trusting(const std::string& authority)
    {
        return "tls=true&tlsCAFile=" + certificates->certificate(authority);
    }

    static std::unique_ptr<Certificates> certificates;
};

std::unique_ptr<Certificates> Tls::certificates;

TEST_F(Tls, WorksWithTheAuthorityThatSignedTheServer)
{
    const ServerProcess server(serverCertificate("here"));
    EXPECT_EQ(writeThrough(withOptions(server.uri(), trusting("right"))), "");
}

TEST_F(Tls, IsRefusedWhenTheAuthorityCannotBeRead)
{
    const ServerProcess server(serverCertificate("here"));
    EXPECT_NE(writeThrough(withOptions(server.uri(), trusting("missing"))), "");
}

TEST_F(Tls, WorksWithoutTheRevocationOfCertificates)
{
    const ServerProcess server(serverCertificate("here"));
    for (const char* const option : {"&tlsDisableCertificateRevocationCheck=true", "&tlsDisableOCSPEndpointCheck=true"})
    {
        EXPECT_EQ(writeThrough(withOptions(server.uri(), trusting("right") + option)), "") << option;
        EXPECT_NE(writeThrough(withOptions(server.uri(), trusting("wrong") + option)), "") << option;
    }
}

TEST_F(Tls, IsRequiredIfOnlyTheClientOrTheServerUsesIt)
{
    const ServerProcess server(serverCertificate("here"));
    EXPECT_NE(writeThrough(withOptions(server.uri(), "tls=false")), "");
    const ServerProcess plain;
    EXPECT_NE(writeThrough(withOptions(plain.uri(), trusting("right"))), "");
}

} // namespace
