// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Faults at each command of an upload and a download: no incomplete file is visible, the error has the reason, and the
// same store works afterwards.

#include "connected_client.h"

#include "dbc/file_store.h"
#include "row_name.h"

#include <array>
#include <cstdint>
#include <memory>
#include <ostream>
#include <sstream>

namespace test_support {
namespace {

using dbc::ErrorKind;
using dbc::FileStore;
using dbc::ServerError;

constexpr std::uint32_t chunkSize = 1U << 20U;

/// Returns the content for five chunks, the last one not full. Two commands store them, and two replies contain them.
std::string largeContent()
{
    std::string content;
    for (char letter = 'a'; letter < 'e'; ++letter)
        content += std::string(chunkSize, letter);
    return content + "the end";
}

enum class Break
{
    BeforeTheCommand,
    AfterTheCommand,
    InsideTheReply,
    Refusal
};

struct BreakRow
{
    const char* name;
    Break type;
    ErrorKind kind;
};

constexpr std::array<BreakRow, 4> breaks{{
    {"dropped before the command", Break::BeforeTheCommand, ErrorKind::Network},
    {"dropped after the command", Break::AfterTheCommand, ErrorKind::Network},
    {"dropped inside the reply", Break::InsideTheReply, ErrorKind::Network},
    {"refused", Break::Refusal, ErrorKind::NotAuthorized},
}};

Fault faultOf(Break type)
{
    switch (type)
    {
    case Break::BeforeTheCommand:
        return Fault::dropBeforeForwarding();
    case Break::AfterTheCommand:
        return Fault::dropAfterForwarding();
    case Break::InsideTheReply:
        return Fault::cutReply(20);
    case Break::Refusal:
        break;
    }
    return Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})");
}

/// One command of an upload or a download.
struct CommandRow
{
    const char* name;
    const char* command;
    const char* target; ///< The collection without the prefix of the store.
    std::size_t number;
};

void PrintTo(const CommandRow& row, std::ostream* out)
{
    *out << row.name;
}

class FileStoreFault : public ConnectedClient, public testing::WithParamInterface<CommandRow>
{
public:
    ~FileStoreFault() override { gateway().clearFaults(); }

    /// Injects the fault into the command of this row and into retries of the driver. Expects that @p call throws a
    /// ServerError.
    template <typename Call>
    void expectError(const std::string& prefix, const BreakRow& row, const char* message, Call call)
    {
        const CommandRow& command = GetParam();
        gateway().inject(faultOf(row.type)
                             .onCommand(command.command)
                             .onTarget(prefix + command.target)
                             .number(command.number)
                             .andLater());

        const auto error = thrownError<ServerError>(call);

        EXPECT_EQ(std::string(error.what()).rfind(std::string(message) + ": ", 0), 0U) << error.what();
        EXPECT_EQ(error.kind(), row.kind) << error.what();
        EXPECT_EQ(error.mayRetry(), row.type != Break::Refusal);
        EXPECT_EQ(gateway().pendingFaults(), 0U);
        gateway().clearFaults();
    }

    static void upload(FileStore& store, const std::string& content)
    {
        dbc::UploadOptions options;
        options.chunkSize = chunkSize;
        std::istringstream source(content);
        store.upload("f", source, options);
    }

    static std::string download(FileStore& store)
    {
        std::ostringstream target;
        store.download("f", target);
        return target.str();
    }
};

class UploadFault : public FileStoreFault
{};

TEST_P(UploadFault, StoresNothingAndTheSameStoreAcceptsTheFileAfterwards)
{
    const std::string content = largeContent();
    int number = 0;
    for (const BreakRow& row : breaks)
    {
        SCOPED_TRACE(row.name);
        const std::string prefix = "fs" + std::to_string(number++); // a new store, which has no indexes yet
        FileStore store(client(), database(), prefix);

        expectError(prefix, row, "Upload failed", [&] { upload(store, content); });

        EXPECT_TRUE(store.list().empty());
        EXPECT_EQ(scratch().count(prefix + ".files") + scratch().count(prefix + ".chunks"), 0U);
        upload(store, content);
        EXPECT_TRUE(download(store) == content);
        EXPECT_EQ(scratch().count(prefix + ".chunks"), 5U);
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, UploadFault,
                         testing::Values(CommandRow{"LookForTheFirstFile", "find", ".files", 1},
                                         CommandRow{"IndexOfTheFiles", "createIndexes", ".files", 1},
                                         CommandRow{"IndexOfTheChunks", "createIndexes", ".chunks", 1},
                                         CommandRow{"FirstChunks", "insert", ".chunks", 1},
                                         CommandRow{"LastChunks", "insert", ".chunks", 2},
                                         CommandRow{"Record", "insert", ".files", 1}),
                         RowName());

class DownloadFault : public FileStoreFault
{};

TEST_P(DownloadFault, IsAnErrorAfterTheChunksBeforeAndTheSameStoreReadsTheFileAfterwards)
{
    const std::string content = largeContent();
    FileStore store(client(), database());
    upload(store, content);
    for (const BreakRow& row : breaks)
    {
        SCOPED_TRACE(row.name);
        std::ostringstream target;

        expectError("fs", row, "Download failed", [&] { store.download("f", target); });

        const std::size_t expected = GetParam().command == std::string("getMore") ? 4 * chunkSize : 0;
        EXPECT_TRUE(target.str() == content.substr(0, expected));
        EXPECT_TRUE(download(store) == content);
    }
}

TEST_P(DownloadFault, SetsBadbitOfTheReaderWhichReadsOnAfterwards)
{
    const std::string content = largeContent();
    FileStore store(client(), database());
    upload(store, content);
    for (const BreakRow& row : breaks)
    {
        SCOPED_TRACE(row.name);
        std::unique_ptr<dbc::FileReader> reader;
        std::string read(content.size(), '\0');

        expectError("fs", row, "Download failed", [&] {
            reader = store.open("f");
            reader->exceptions(std::ios::badbit);
            reader->read(read.data(), static_cast<std::streamsize>(read.size()));
        });
        if (!reader)
            continue; // open() has failed to read the file document

        EXPECT_TRUE(reader->bad());
        reader->clear();
        const auto before = static_cast<std::size_t>(reader->tellg());
        EXPECT_EQ(before, GetParam().command == std::string("getMore") ? 4 * chunkSize : 0);
        reader->read(read.data() + before, static_cast<std::streamsize>(read.size() - before));
        EXPECT_TRUE(read == content);
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, DownloadFault,
                         testing::Values(CommandRow{"Record", "find", ".files", 1},
                                         CommandRow{"FirstChunks", "find", ".chunks", 1},
                                         CommandRow{"LaterChunks", "getMore", ".chunks", 1}),
                         RowName());

/// Failed uploads whose chunks cannot be removed either.
class FailedCleanUp : public ConnectedClient
{
public:
    ~FailedCleanUp() override { gateway().clearFaults(); }

    std::string failedUpload(FileStore& store, const char* brokenTarget)
    {
        std::istringstream source("content");
        gateway().inject(Fault::dropAfterForwarding().onCommand("insert").onTarget(brokenTarget));
        gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("delete").andLater());
        const std::string text = thrownText([&] { store.upload("f", source); });
        gateway().clearFaults();
        return text;
    }
};

TEST_F(FailedCleanUp, LeavesAWholeFileWhoseRecordWasWritten)
{
    FileStore store(client(), database());

    EXPECT_EQ(failedUpload(store, "fs.files").rfind("runtime_error: Upload failed: ", 0), 0U);

    std::ostringstream target;
    store.download("f", target);
    EXPECT_EQ(target.str(), "content");
}

TEST_F(FailedCleanUp, LeavesChunksThatBelongToNoFile)
{
    FileStore store(client(), database());

    EXPECT_EQ(failedUpload(store, "fs.chunks").rfind("runtime_error: Upload failed: ", 0), 0U);

    EXPECT_TRUE(store.list().empty());
    EXPECT_EQ(scratch().count("fs.chunks"), 1U);
}

} // namespace
} // namespace test_support
