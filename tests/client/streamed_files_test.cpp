// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "dbc/files.h"
#include "pattern_text.h"

#include <sstream>

namespace test_support {
namespace {

constexpr std::size_t chunkSize = 261'120; // the driver's

class StreamedFile : public ConnectedClient
{
public:
    ~StreamedFile() override { gateway().clearFaults(); }

    void store(const std::string& name, const std::string& text)
    {
        std::istringstream source(text);
        dbc::writeFile(client(), database(), "fs", name, source);
    }

    std::string stored(const std::string& name)
    {
        std::stringstream stream;
        client().readFile(database(), "fs", name, &stream);
        return stream.str();
    }

    std::list<std::string> listed()
    {
        std::list<std::string> names;
        client().listFiles(database(), "fs", names);
        return names;
    }

    void expectNothingStored()
    {
        EXPECT_EQ(scratch().count("fs.files"), 0U);
        EXPECT_EQ(scratch().count("fs.chunks"), 0U);
    }
};

TEST_F(StreamedFile, HasItsNameAndEveryByte)
{
    const std::string text = patternText(3 * chunkSize + 1);
    store("name", text);
    EXPECT_TRUE(stored("name") == text);
    EXPECT_EQ(listed(), std::list<std::string>{"name"});
}

TEST_F(StreamedFile, MayBeEmpty)
{
    store("name", "");
    EXPECT_EQ(stored("name"), "");
    EXPECT_EQ(listed(), std::list<std::string>{"name"});
}

TEST_F(StreamedFile, OfAStoredNameIsStoredBesideTheOlderFile)
{
    store("name", "older");
    store("name", "newer");
    EXPECT_EQ(listed(), (std::list<std::string>{"name", "name"}));
    EXPECT_EQ(scratch().count("fs.chunks"), 2U);
}

TEST_F(StreamedFile, HasATemporaryNameUntilEveryChunkIsStored)
{
    gateway().clear();
    store("name", patternText(2 * chunkSize));

    const auto updates = gateway().commands("update");
    ASSERT_GE(updates.size(), 3U);
    for (std::size_t index = 0; index + 1 < updates.size(); ++index)
    {
        if (updates[index].target == "fs.files")
        {
            EXPECT_NE(updates[index].json("updates.0.u").find(R"("filename" : "name.partial-)"), std::string::npos)
                << updates[index].json();
        }
    }
    EXPECT_EQ(updates.back().target, "fs.files");
    EXPECT_EQ(updates.back().json("updates.0.u"), R"({ "$set" : { "filename" : "name" } })");
}

TEST_F(StreamedFile, IsRemovedWhenTheConnectionBreaksInTheMiddle)
{
    for (const char* const target : {"fs.chunks", "fs.files"})
    {
        gateway().inject(Fault::dropBeforeForwarding().onCommand("update").onTarget(target).number(2));
        EXPECT_NE(thrownText([&] { store("name", patternText(4 * chunkSize)); }), "");
        expectNothingStored();
    }
}

TEST_F(StreamedFile, IsRemovedIfTheServerDoesNotSetTheFinalName)
{
    gateway().clear();
    store("name", "text");
    const std::size_t updates = gateway().commands("update").size(); // the last one gives the name
    client().removeFile(database(), "fs", "name");
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("update").number(updates));

    EXPECT_EQ(thrownText([&] { store("name", "text"); }), "runtime_error: Updating failed: no(code: 13)");

    expectNothingStored();
}

TEST_F(StreamedFile, ThatIsRemovedWhileItIsStoredIsAnError)
{
    // Held back in the middle, while another client removes what is there.
    const auto removeAll = [this](Bytes&) {
        DataBaseClient other;
        other.connect(TestServer::instance().directUri());
        for (const char* const collection : {"fs.files", "fs.chunks"})
            other.remove(database(), collection, ObjectProperties());
    };
    for (const std::size_t chunk : {2U, 4U})
    {
        gateway().inject(Fault::changeReply(removeAll).onCommand("update").onTarget("fs.chunks").number(chunk));
        EXPECT_EQ(thrownText([&] { store("name", patternText(4 * chunkSize)); }),
                  "runtime_error: The file was removed while it was being stored");
        expectNothingStored();
    }
}

TEST_F(StreamedFile, ThatIsRemovedWhileItGetsItsNameIsAnError)
{
    const auto removeAll = [this](Bytes&) {
        DataBaseClient other;
        other.connect(TestServer::instance().directUri());
        other.remove(database(), "fs.files", ObjectProperties());
    };
    // The reply that says that the first chunk is there.
    gateway().inject(Fault::changeReply(removeAll).onCommand("find").onTarget("fs.chunks"));
    EXPECT_EQ(thrownText([&] { store("name", "text"); }),
              "runtime_error: The file was removed while it was being stored");
    EXPECT_EQ(scratch().count("fs.files"), 0U);
}

TEST_F(StreamedFile, KeepsItsTemporaryNameWhenItCannotBeRemovedEither)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "first", "code": 13})")
                         .onCommand("update")
                         .onTarget("fs.chunks")
                         .number(2));
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "second", "code": 13})").onCommand("delete"));

    EXPECT_NE(thrownText([&] { store("name", patternText(4 * chunkSize)); }), "");

    ASSERT_EQ(listed().size(), 1U);
    EXPECT_EQ(dbc::finalFileName(listed().front()), "name");
}

} // namespace
} // namespace test_support
