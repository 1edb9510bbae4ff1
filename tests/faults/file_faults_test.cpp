// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations on files of DataBaseClient, and dbc::writeFile(), when one of their commands goes wrong.

#include "connected_client.h"

#include "dbc/files.h"
#include "pattern_text.h"

#include <sstream>

namespace test_support {
namespace {

/// A store of the files "b" and "a".
class FileFault : public ConnectedClient
{
public:
    FileFault()
    {
        for (const char* const name : {"b", "a"})
            client().writeFile(database(), "fs", name, "/proc/self/status");
    }
    ~FileFault() override { gateway().clearFaults(); }
};

TEST_F(FileFault, OfEachCommandThrowsTheTextOfItsStep)
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

TEST_F(FileFault, OfARemovalKeepsTheRemovalOfEarlierFiles)
{
    client().writeFile(database(), "fs", "A", "/proc/self/status");
    gateway().inject(
        Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("delete").onTarget("fs.files").number(2));

    EXPECT_NE(thrownText([&] { client().removeFile(database(), "fs", "a"); }), "");

    EXPECT_EQ(scratch().count("fs.files"), 2U);
}

class FileListFault : public FileFault
{
public:
    FileListFault()
    {
        // More than one batch: the list has a middle.
        for (int index = 0; index < 150; ++index)
        {
            scratch().insert("many.files", R"({"_id": )" + std::to_string(index) +
                                               R"(, "length": 0, "chunkSize": 10, "filename": "n"})");
        }
    }

    std::string listFailure(std::list<std::string>& names)
    {
        return thrownText([&] { client().listFiles(database(), "many", names); });
    }

    static constexpr const char* listError = "runtime_error: Error occurred while list gridFS files operation: ";
};

TEST_F(FileListFault, OfTheConnectionKeepsTheNamesBefore)
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

TEST_F(FileListFault, OfALostCursorHasTheServersText)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "cursor id 1 not found", "code": 43})").onCommand("getMore"));
    std::list<std::string> names;

    EXPECT_EQ(listFailure(names), std::string(listError) + "cursor id 1 not found(code: 43)");
    EXPECT_FALSE(names.empty());
}

TEST_F(FileListFault, IsReportedByARemovalThatHadNothingToRemove)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "cursor id 1 not found", "code": 43})").onCommand("getMore"));

    EXPECT_EQ(thrownText([&] { client().removeFile(database(), "many", "other"); }),
              std::string(listError) + "cursor id 1 not found(code: 43)");
}

TEST_F(FileListFault, OfTheFirstCommandIsReported)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("find"));
    std::list<std::string> names;

    EXPECT_EQ(listFailure(names), std::string(listError) + "no(code: 13)");
    EXPECT_TRUE(names.empty());
}

constexpr std::size_t chunkSize = 261'120; // the driver's

class StreamedFileFault : public ConnectedClient
{
public:
    ~StreamedFileFault() override { gateway().clearFaults(); }

    void store(const std::string& name, const std::string& text)
    {
        std::istringstream source(text);
        dbc::writeFile(client(), database(), "fs", name, source);
    }

    void expectNothingStored()
    {
        EXPECT_EQ(scratch().count("fs.files"), 0U);
        EXPECT_EQ(scratch().count("fs.chunks"), 0U);
    }
};

TEST_F(StreamedFileFault, OfTheConnectionLeavesNothing)
{
    for (const char* const target : {"fs.chunks", "fs.files"})
    {
        gateway().inject(Fault::dropBeforeForwarding().onCommand("update").onTarget(target).number(2));
        EXPECT_NE(thrownText([&] { store("name", patternText(4 * chunkSize)); }), "");
        expectNothingStored();
    }
}

TEST_F(StreamedFileFault, OfTheFinalNameLeavesNothing)
{
    gateway().clear();
    store("name", "text");
    const std::size_t updates = gateway().commands("update").size(); // the last one gives the name
    client().removeFile(database(), "fs", "name");
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("update").number(updates));

    EXPECT_EQ(thrownText([&] { store("name", "text"); }), "runtime_error: Updating failed: no(code: 13)");

    expectNothingStored();
}

TEST_F(StreamedFileFault, IsReportedIfTheFileIsRemovedWhileItIsStored)
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

TEST_F(StreamedFileFault, IsReportedIfTheFileIsRemovedWhileItGetsItsName)
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

TEST_F(StreamedFileFault, LeavesTheTemporaryNameIfTheRemovalFailsToo)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "first", "code": 13})")
                         .onCommand("update")
                         .onTarget("fs.chunks")
                         .number(2));
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "second", "code": 13})").onCommand("delete"));

    EXPECT_NE(thrownText([&] { store("name", patternText(4 * chunkSize)); }), "");

    std::list<std::string> names;
    client().listFiles(database(), "fs", names);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(dbc::finalFileName(names.front()), "name");
}

} // namespace
} // namespace test_support
