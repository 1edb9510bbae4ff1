// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"
#include "pattern_text.h"
#include "scratch_folder.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

namespace test_support {
namespace {

class FileCommand : public ConnectedClient
{
public:
    FileCommand()
    {
        for (const char* const name : {"b", "a"})
            client().writeFile(database(), "fs", name, "/proc/self/status");
        gateway().clear();
    }
    ~FileCommand() override { gateway().clearFaults(); }

    std::vector<std::string> namesWithoutIndexChecks()
    {
        std::vector<std::string> names = gateway().names();
        names.erase(std::remove(names.begin(), names.end(), "listIndexes"), names.end());
        return names;
    }
};

TEST_F(FileCommand, OfAListSortsByNameAndAsksForAll)
{
    std::list<std::string> names;
    client().listFiles(database(), "fs", names);

    ASSERT_EQ(namesWithoutIndexChecks(), std::vector<std::string>{"find"});
    EXPECT_EQ(gateway().commands("find")[0].json(),
              R"({ "find" : "fs.files", "filter" : {  }, "sort" : { "filename" : 1 } })");
}

TEST_F(FileCommand, OfARemovalWalksTheSameListAndDeletesFileThenChunks)
{
    client().removeFile(database(), "fs", "A");

    ASSERT_EQ(namesWithoutIndexChecks(), (std::vector<std::string>{"find", "delete", "delete"}));
    EXPECT_EQ(gateway().commands("find")[0].json(),
              R"({ "find" : "fs.files", "filter" : {  }, "sort" : { "filename" : 1 } })");
    EXPECT_EQ(gateway().commands("delete")[0].target, "fs.files");
    EXPECT_EQ(gateway().commands("delete")[1].target, "fs.chunks");
}

TEST_F(FileCommand, OfAReadAsksForOneFileByItsNameAndForItsChunksOnce)
{
    std::stringstream stream;
    client().readFile(database(), "fs", "a", &stream);

    ASSERT_EQ(namesWithoutIndexChecks(), (std::vector<std::string>{"find", "find"}));
    EXPECT_EQ(gateway().commands("find")[0].json("filter"), R"({ "filename" : "a" })");
    EXPECT_EQ(gateway().commands("find")[0].json("limit"), "1");
    EXPECT_EQ(gateway().commands("find")[1].target, "fs.chunks");
}

// Returns the bytes of the chunk in an update command.
std::string chunkOf(const RecordedCommand& command)
{
    const Bytes& document = command.sequences.at(0).documents.at(0);
    bson_t bson;
    bson_iter_t iter;
    bson_iter_t data;
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    std::uint32_t size = 0;
    const std::uint8_t* bytes = nullptr;
    if (!bson_init_static(&bson, document.data(), document.size()) || !bson_iter_init(&iter, &bson) ||
        !bson_iter_find_descendant(&iter, "u.data", &data))
        return "";
    bson_iter_binary(&data, &subtype, &size, &bytes);
    return std::string(reinterpret_cast<const char*>(bytes), size);
}

TEST_F(FileCommand, OfAWriteOfSixtyFourMebibytesCarriesEveryByteOnce)
{
    const std::string text = patternText(64U * 1024 * 1024);
    const ScratchFolder folder;
    // The gateway replies, because some servers need time proportional to the square of the number of chunks.
    gateway().inject(Fault::answer(R"({"ok": 1, "n": 1, "nModified": 1})").onCommand("update").andLater());

    client().writeFile(database(), "fs", "large", folder.write("large", text));

    std::string carried;
    for (const RecordedCommand& command : gateway().commands("update"))
    {
        if (command.target == "fs.chunks")
            carried += chunkOf(command);
    }
    EXPECT_TRUE(carried == text);
}

} // namespace
} // namespace test_support
