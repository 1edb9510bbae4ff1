// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"
#include "pattern_text.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
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
    const std::filesystem::path path = std::filesystem::temp_directory_path() / ("large-" + database());
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
    // The gateway replies, because some servers need time proportional to the square of the number of chunks.
    gateway().inject(Fault::answer(R"({"ok": 1, "n": 1, "nModified": 1})").onCommand("update").andLater());

    client().writeFile(database(), "fs", "large", path.string());
    std::filesystem::remove(path);

    std::string carried;
    for (const RecordedCommand& command : gateway().commands("update"))
    {
        if (command.target == "fs.chunks")
            carried += chunkOf(command);
    }
    EXPECT_TRUE(carried == text);
}

class ListFault : public FileCommand
{
public:
    ListFault()
    {
        // More than one batch, so that a fault can happen in the middle of the list.
        for (int index = 0; index < 150; ++index)
        {
            scratch().insert("many.files", R"({"_id": )" + std::to_string(index) +
                                               R"(, "length": 0, "chunkSize": 10, "filename": "n"})");
        }
        gateway().clear();
    }

    std::string listFailure(std::list<std::string>& names)
    {
        return thrownText([&] { client().listFiles(database(), "many", names); });
    }

    static constexpr const char* listError = "runtime_error: Error occurred while list gridFS files operation: ";
};

TEST_F(ListFault, ThatBreaksTheConnectionInTheMiddleIsReportedAndKeepsTheNamesBefore)
{
    for (const bool inside : {false, true})
    {
        gateway().inject((inside ? Fault::cutReply(100) : Fault::dropBeforeForwarding()).onCommand("getMore"));
        std::list<std::string> names;

        const std::string text = listFailure(names);

        EXPECT_EQ(text.rfind(listError, 0), 0U) << text;
        EXPECT_FALSE(names.empty());
        EXPECT_LT(names.size(), 150U);
    }
}

TEST_F(ListFault, ThatLosesTheCursorIsReportedWithTheServersText)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "cursor id 1 not found", "code": 43})").onCommand("getMore"));
    std::list<std::string> names;

    EXPECT_EQ(listFailure(names), std::string(listError) + "cursor id 1 not found(code: 43)");
    EXPECT_FALSE(names.empty());
}

TEST_F(ListFault, IsReportedByARemovalThatHadNothingToRemove)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "cursor id 1 not found", "code": 43})").onCommand("getMore"));

    EXPECT_EQ(thrownText([&] { client().removeFile(database(), "many", "other"); }),
              std::string(listError) + "cursor id 1 not found(code: 43)");
}

TEST_F(ListFault, AtItsVeryBeginningIsReported)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("find"));
    std::list<std::string> names;

    EXPECT_EQ(listFailure(names), std::string(listError) + "no(code: 13)");
    EXPECT_TRUE(names.empty());
}

TEST_F(FileCommand, ThatFailsThrowsTheTextOfItsStep)
{
    const auto refuse = [this](const char* command, const char* target) {
        gateway().clearFaults();
        gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand(command).onTarget(target));
    };
    std::stringstream stream;
    std::list<std::string> names;
    const auto read = [&] { client().readFile(database(), "fs", "a", &stream); };
    const auto write = [&] { client().writeFile(database(), "fs", "c", "/proc/self/status"); };
    const auto list = [&] { client().listFiles(database(), "fs", names); };
    const auto remove = [&] { client().removeFile(database(), "fs", "a"); };

    const std::string openError =
        "runtime_error: Error occurred while mongoc_client_get_gridfs operation: no(code: 13)";
    refuse("listIndexes", "fs.chunks");
    EXPECT_EQ(thrownText(read), openError);
    refuse("listIndexes", "fs.files");
    EXPECT_EQ(thrownText(write), openError);
    refuse("listIndexes", "fs.files");
    EXPECT_EQ(thrownText(list), openError);
    refuse("listIndexes", "fs.files");
    EXPECT_EQ(thrownText(remove), openError);

    refuse("find", "fs.files");
    EXPECT_EQ(thrownText(read),
              "runtime_error: Error occurred while mongoc_gridfs_find_one_by_filename operation: no(code: 13)");
    refuse("find", "fs.chunks");
    EXPECT_EQ(thrownText(read), "runtime_error: Error occurred while read gridFS file operation");
    refuse("update", "fs.chunks");
    EXPECT_EQ(thrownText(write), "runtime_error: Error occurred while save gridFS file operation: no(code: 13)");
    refuse("update", "fs.files");
    EXPECT_EQ(thrownText(write), "runtime_error: Error occurred while save gridFS file operation: no(code: 13)");
    refuse("delete", "fs.files");
    EXPECT_EQ(thrownText(remove), "runtime_error: Error occurred while remove gridFS file operation: no(code: 13)");
    refuse("delete", "fs.chunks");
    EXPECT_EQ(thrownText(remove), "runtime_error: Error occurred while remove gridFS file operation: no(code: 13)");
    EXPECT_EQ(stream.str(), "");
}

TEST_F(FileCommand, ThatFailsToRemoveOneFileLeavesTheRemovalOfEarlierOnes)
{
    client().writeFile(database(), "fs", "A", "/proc/self/status");
    gateway().inject(
        Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("delete").onTarget("fs.files").number(2));

    thrownText([&] { client().removeFile(database(), "fs", "a"); });

    EXPECT_EQ(scratch().count("fs.files"), 2U);
}

} // namespace
} // namespace test_support
