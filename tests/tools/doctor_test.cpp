#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

TEST(Doctor, TellsOfAMemberThatIsAwayThoughTheOthersServe)
{
    WireGateway& gateway = TestServer::instance().gateway();
    const std::string place = "127.0.0.1:" + std::to_string(gateway.port());
    const std::string primary = R"({"ok": 1, "ismaster": true, "setName": "set", "maxWireVersion": 17,
        "maxBsonObjectSize": 16777216, "maxMessageSizeBytes": 48000000, "maxWriteBatchSize": 100000, "hosts": [")" +
                                place + R"(", "127.0.0.1:1"], "me": ")" + place + "\"}";
    for (const char* const handshake : {"isMaster", "hello"})
        gateway.inject(Fault::replaceReply(primary).onCommand(handshake).andLater());
    ToolProcess tool({"--uri", "mongodb://" + place + ",127.0.0.1:1/?replicaSet=set", "doctor"});

    EXPECT_EQ(tool.wait(), 3) << tool.messages();

    gateway.clearFaults();
    const std::string output = tool.output();
    EXPECT_NE(output.find("ok    port: " + place + " answers\n"), std::string::npos) << output;
    EXPECT_NE(output.find("fail  port: 127.0.0.1:1 refuses"), std::string::npos) << output;
    EXPECT_NE(output.find("ok    login: "), std::string::npos) << output;
}

} // namespace
} // namespace test_support
