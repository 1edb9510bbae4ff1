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

} // namespace
} // namespace test_support
