// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "command_text.h"
#include "dbc/file_store.h"
#include "dbc/files.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace test_support {
namespace {

using dbc::FileInfo;
using dbc::FileStore;
using dbc::Value;

class FileStoreOnServer : public ConnectedClient
{
public:
    FileStoreOnServer() : m_store(client(), database()) {}
    ~FileStoreOnServer() override { gateway().clearFaults(); }

    FileStore& store() { return m_store; }

    /// Uploads the content in chunks of ten bytes.
    FileInfo upload(const std::string& name, const std::string& content)
    {
        dbc::UploadOptions options;
        options.chunkSize = 10;
        std::istringstream source(content);
        return m_store.upload(name, source, options);
    }

    std::string download(const std::string& name, const dbc::DownloadOptions& options = {})
    {
        std::ostringstream target;
        m_store.download(name, target, options);
        return target.str();
    }

    static std::string letters(std::size_t count)
    {
        std::string text;
        while (text.size() < count)
            text += static_cast<char>('a' + text.size() % 26);
        return text;
    }

    std::size_t records() { return scratch().count("fs.files"); }
    std::size_t chunks() { return scratch().count("fs.chunks"); }

private:
    FileStore m_store;
};

TEST_F(FileStoreOnServer, ReturnsWhatWasStoredWhateverItsLength)
{
    for (const std::size_t length : {0U, 1U, 9U, 10U, 11U, 20U, 95U})
    {
        const std::string content = letters(length);
        const FileInfo info = upload("f", content);

        EXPECT_EQ(download("f"), content);
        EXPECT_EQ(info.length, length);
        store().removeById(info.id);
    }
    EXPECT_EQ(chunks(), 0U);
}

TEST_F(FileStoreOnServer, RecordHoldsWhatTheUploaderGave)
{
    dbc::UploadOptions options;
    options.id = Value("my id");
    options.contentType = "text/plain";
    options.metadata = {{"owner", "ada"}};
    std::istringstream source("content");

    const FileInfo stored = store().upload("f", source, options);
    const std::optional<FileInfo> found = store().find("f");

    ASSERT_TRUE(found);
    for (const FileInfo& info : {stored, *found})
    {
        EXPECT_EQ(info.id, Value("my id"));
        EXPECT_EQ(info.name, "f");
        EXPECT_EQ(info.length, 7U);
        EXPECT_EQ(info.chunkSize, 255U * 1024U);
        EXPECT_EQ(info.contentType, "text/plain");
        EXPECT_EQ(info.metadata, (Value{{"owner", "ada"}}));
    }
    EXPECT_EQ(found->uploaded, stored.uploaded);
    EXPECT_GT(stored.uploaded.time_since_epoch().count(), 0);
}

TEST_F(FileStoreOnServer, FilesAreReadByTheFrozenClientAndTheOtherWayRound)
{
    upload("new", letters(25));
    std::stringstream content;
    client().readFile(database(), "fs", "new", &content);
    EXPECT_EQ(content.str(), letters(25));

    client().writeFile(database(), "fs", "old", "/dev/null");
    EXPECT_EQ(download("old"), "");
}

TEST_F(FileStoreOnServer, WritesIndexesThenContentAndTheRecordWhenTheContentWasCounted)
{
    gateway().clear();
    upload("f", letters(25));

    EXPECT_EQ(gateway().names(),
              (std::vector<std::string>{"find", "createIndexes", "createIndexes", "insert", "aggregate", "insert"}));
    const std::vector<RecordedCommand> inserts = gateway().commands("insert");
    EXPECT_EQ(inserts.at(0).target, "fs.chunks");
    EXPECT_EQ(inserts.at(1).target, "fs.files");
    EXPECT_EQ(inserts.at(0).json("documents.2.n"), "2");

    gateway().clear();
    upload("g", letters(25));
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"insert", "aggregate", "insert"}));
}

TEST_F(FileStoreOnServer, FirstUploadLooksForOneFileAndCreatesTheIndexes)
{
    gateway().clear();
    upload("f", "x");

    EXPECT_PRED2(isSameCommand, sent("find"),
                 R"({ "find" : "fs.files", "filter" : {  }, "projection" : { "_id" : 1 }, "limit" : 1 })");
    const std::vector<RecordedCommand> indexes = gateway().commands("createIndexes");
    ASSERT_EQ(indexes.size(), 2U);
    EXPECT_EQ(indexes[0].target, "fs.files");
    EXPECT_EQ(indexes[0].json("indexes"),
              R"([ { "key" : { "filename" : 1, "uploadDate" : 1 }, "name" : "filename_1_uploadDate_1" } ])");
    EXPECT_EQ(indexes[1].target, "fs.chunks");
    EXPECT_EQ(indexes[1].json("indexes"),
              R"([ { "key" : { "files_id" : 1, "n" : 1 }, "name" : "files_id_1_n_1", "unique" : true } ])");
}

TEST_F(FileStoreOnServer, DownloadReadsAnyPart)
{
    upload("f", letters(35));
    const std::string content = letters(35);
    for (const std::uint64_t offset : {0U, 1U, 9U, 10U, 34U, 35U, 100U})
    {
        for (const std::uint64_t length : {0U, 1U, 9U, 10U, 25U, 100U})
        {
            dbc::DownloadOptions options;
            options.offset = offset;
            options.length = length;
            EXPECT_EQ(download("f", options), offset < content.size() ? content.substr(offset, length) : "")
                << offset << ' ' << length;
        }
    }
    gateway().clear();
    dbc::DownloadOptions options;
    options.offset = 12;
    options.length = 3;
    download("f", options);
    const std::vector<RecordedCommand> finds = gateway().commands("find");
    EXPECT_EQ(finds.at(0).json("sort"), R"({ "uploadDate" : -1 })");
    EXPECT_EQ(finds.at(0).json("limit"), "1");
    EXPECT_EQ(finds.at(1).json("sort"), R"({ "n" : 1 })");
    EXPECT_EQ(finds.at(1).json("limit"), "1");
    EXPECT_EQ(finds.at(1).json("filter.n"), R"({ "$gte" : 1 })");

    options.offset = 0;
    options.length = 10;
    gateway().clear();
    download("f", options);
    EXPECT_EQ(gateway().commands("find").at(1).json("limit"), "1");
}

TEST_F(FileStoreOnServer, ChunksHaveOneByteTo15MiB)
{
    dbc::UploadOptions options;
    for (const std::uint32_t chunkSize : {1U, 15U << 20U})
    {
        options.chunkSize = chunkSize;
        std::istringstream source("content");
        store().upload("f", source, options);
        gateway().clear();

        EXPECT_EQ(download("f"), "content");

        // A reply has at most 4 MiB, but at least one chunk.
        EXPECT_EQ(gateway().commands("find").at(1).json("batchSize"), chunkSize == 1 ? "4194304" : "1");
    }
    options.chunkSize = (15U << 20U) + 1;
    std::istringstream source("content");
    EXPECT_EQ(thrownText([&] { store().upload("f", source, options); }),
              "invalid_argument: Chunk size is out of range");
}

TEST_F(FileStoreOnServer, ReaderReadsAndSeeks)
{
    upload("f", letters(35));
    const std::string content = letters(35);

    const std::unique_ptr<dbc::FileReader> reader = store().open("f");
    EXPECT_EQ(reader->info().length, 35U);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(*reader), {}), content);

    for (const int position : {0, 34, 12, 13, 11, 10, 9, 29, 30, 5})
    {
        reader->clear();
        reader->seekg(position);
        EXPECT_EQ(reader->tellg(), std::streampos(position));
        char text[4] = {};
        reader->read(text, 3);
        EXPECT_EQ(std::string(text), content.substr(static_cast<std::size_t>(position), 3));
    }
    reader->clear();
    reader->seekg(-2, std::ios::end);
    reader->seekg(1, std::ios::cur);
    EXPECT_EQ(reader->get(), content.back());
    EXPECT_EQ(reader->get(), std::char_traits<char>::eof());
    reader->clear();
    EXPECT_TRUE(reader->seekg(36).fail());
}

TEST_F(FileStoreOnServer, ReaderSeeksToBothEndsAndNoFurther)
{
    upload("f", letters(35));
    const std::unique_ptr<dbc::FileReader> reader = store().open("f");

    EXPECT_EQ(reader->seekg(0, std::ios::end).tellg(), std::streampos(35));
    EXPECT_EQ(reader->seekg(-35, std::ios::cur).tellg(), std::streampos(0));
    EXPECT_EQ(reader->seekg(35, std::ios::beg).tellg(), std::streampos(35));
    EXPECT_EQ(reader->seekg(-35, std::ios::end).tellg(), std::streampos(0));

    const std::streampos failed(-1);
    std::streambuf* const buffer = reader->rdbuf();
    EXPECT_EQ(buffer->pubseekoff(-1, std::ios::beg), failed);
    EXPECT_EQ(buffer->pubseekoff(1, std::ios::end), failed);
    EXPECT_EQ(buffer->pubseekoff(-1, std::ios::cur), failed);
    EXPECT_EQ(buffer->pubseekpos(-1), failed);
    EXPECT_EQ(buffer->pubseekpos(36), failed);
    EXPECT_EQ(buffer->pubseekoff(0, std::ios::beg, std::ios::out), failed);
    EXPECT_EQ(reader->get(), 'a');
}

TEST_F(FileStoreOnServer, ReaderSeeksWithoutACommandInsideTheCurrentChunk)
{
    upload("f", letters(35));
    const std::unique_ptr<dbc::FileReader> reader = store().open("f");
    reader->get();
    gateway().clear();

    for (const int position : {9, 0, 10, 5})
        EXPECT_EQ(reader->seekg(position).tellg(), std::streampos(position));
    EXPECT_EQ(reader->get(), 'f');

    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(FileStoreOnServer, ByNameIsTheNewestFile)
{
    upload("f", "old");
    const std::chrono::milliseconds before =
        std::chrono::duration_cast<std::chrono::milliseconds>(store().find("f")->uploaded.time_since_epoch());
    FileInfo newest = upload("f", "new");
    // Repeated until the upload time differs: it has a precision of one millisecond.
    while (newest.uploaded.time_since_epoch() == before)
    {
        store().removeById(newest.id);
        newest = upload("f", "new");
    }

    EXPECT_EQ(download("f"), "new");
    EXPECT_EQ(store().list().size(), 2U);
    EXPECT_EQ(store().remove("f"), 2U);
    EXPECT_EQ(records() + chunks(), 0U);
    EXPECT_EQ(store().remove("f"), 0U);
}

TEST_F(FileStoreOnServer, ListIsFilteredAndSorted)
{
    for (const char* const name : {"b", "c", "a"})
        upload(name, name);
    dbc::ListOptions options;
    options.sort = {{"filename", dbc::Order::Descending}};
    options.limit = 2;

    std::string names;
    for (const FileInfo& info : store().list({}, options))
        names += info.name;

    EXPECT_EQ(names, "cb");
    options.skip = 1;
    EXPECT_EQ(store().list({}, options).front().name, "b");
    EXPECT_EQ(store().list({{"filename", "a"}}).size(), 1U);
}

TEST_F(FileStoreOnServer, RenameAndRemoveReportWhetherTheFileExists)
{
    const FileInfo info = upload("f", "x");

    EXPECT_TRUE(store().rename(info.id, "g"));
    EXPECT_EQ(download("g"), "x");
    EXPECT_TRUE(store().removeById(info.id));
    EXPECT_FALSE(store().removeById(info.id));
    EXPECT_FALSE(store().rename(info.id, "f"));
    EXPECT_EQ(store().find("g"), std::nullopt);
}

TEST_F(FileStoreOnServer, ProgressCountsBytesAndCancels)
{
    std::vector<std::uint64_t> steps;
    dbc::UploadOptions options;
    options.chunkSize = 10;
    options.progress = [&](std::uint64_t bytes) {
        steps.push_back(bytes);
        return bytes < 20;
    };
    std::istringstream source(letters(35));
    EXPECT_THROW(store().upload("f", source, options), dbc::Cancelled);
    EXPECT_EQ(steps, (std::vector<std::uint64_t>{10, 20}));
    EXPECT_EQ(records() + chunks(), 0U);

    upload("f", letters(35));
    dbc::DownloadOptions download;
    download.offset = 5;
    steps.clear();
    download.progress = [&](std::uint64_t bytes) {
        steps.push_back(bytes);
        return bytes < 15;
    };
    std::ostringstream target;
    EXPECT_THROW(store().download("f", target, download), dbc::Cancelled);
    EXPECT_EQ(steps, (std::vector<std::uint64_t>{5, 15}));
}

TEST_F(FileStoreOnServer, UploadFailsIfItsContentIsNoLongerThere)
{
    upload("first", "x"); // creates the indexes
    gateway().inject(Fault::answer(R"({"ok": 1, "n": 3})").onCommand("insert").onTarget("fs.chunks"));
    EXPECT_EQ(thrownText([&] { upload("f", letters(25)); }),
              "runtime_error: Upload failed: the content was removed while it was being stored");
    EXPECT_EQ(records(), 1U);
}

TEST_F(FileStoreOnServer, UploadOfOneChunkFailsIfItIsNoLongerThere)
{
    upload("first", "x"); // creates the indexes
    gateway().inject(Fault::answer(R"({"ok": 1, "n": 1})").onCommand("insert").onTarget("fs.chunks"));
    EXPECT_EQ(thrownText([&] { upload("f", "content"); }),
              "runtime_error: Upload failed: the content was removed while it was being stored");
}

TEST_F(FileStoreOnServer, FailedUploadRemovesOnlyWhatItMayHaveStored)
{
    upload("first", "x"); // creates the indexes
    const auto failedUpload = [this](const char* target) {
        gateway().inject(
            Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("insert").onTarget(target));
        gateway().clear();
        EXPECT_EQ(thrownText([&] { upload("f", "content"); }), "runtime_error: Upload failed: no(code: 13)");
        std::string removals;
        for (const RecordedCommand& removal : gateway().commands("delete"))
            removals += removal.target + ' ';
        return removals;
    };

    EXPECT_EQ(failedUpload("fs.chunks"), "fs.chunks ");
    EXPECT_EQ(failedUpload("fs.files"), "fs.files fs.chunks ");
    EXPECT_EQ(chunks(), 1U);
}

TEST_F(FileStoreOnServer, UploadWithAnIdThatIsTakenLeavesTheOtherFile)
{
    dbc::UploadOptions options;
    options.id = Value(1);
    std::istringstream first("first");
    store().upload("f", first, options);
    std::istringstream second("second");

    const auto error = thrownError<dbc::ServerError>([&] { store().upload("g", second, options); });

    EXPECT_EQ(error.kind(), dbc::ErrorKind::DuplicateKey);
    EXPECT_EQ(download("f"), "first");
    EXPECT_EQ(records(), 1U);
    EXPECT_EQ(chunks(), 1U);
}

TEST_F(FileStoreOnServer, BrokenFileIsAnErrorAfterWhatCameBefore)
{
    upload("f", letters(35));
    scratch().run(R"({"delete": "fs.chunks", "deletes": [{"q": {"n": 2}, "limit": 1}]})");
    std::ostringstream target;
    EXPECT_EQ(thrownText([&] { store().download("f", target); }),
              "runtime_error: Download failed: chunk 2 of the stored file is missing");
    EXPECT_EQ(target.str(), letters(20));
    const std::unique_ptr<dbc::FileReader> reader = store().open("f");
    reader->seekg(20);
    EXPECT_EQ(reader->get(), std::char_traits<char>::eof());
    EXPECT_TRUE(reader->bad());

    scratch().run(R"({"update": "fs.chunks", "updates": [{"q": {"n": 1}, "u": {"$set": {"data": 5}}}]})");
    EXPECT_EQ(thrownText([&] { store().download("f", target); }),
              "runtime_error: Download failed: chunk 1 of the stored file has a wrong length");
    scratch().run(R"({"update": "fs.files", "updates": [{"q": {}, "u": {"$set": {"chunkSize": 0}}}]})");
    EXPECT_EQ(thrownText([&] { store().download("f", target); }),
              "runtime_error: Download failed: the record of a stored file is malformed");
    EXPECT_EQ(thrownText([&] { store().list(); }),
              "runtime_error: Listing files failed: the record of a stored file is malformed");
}

TEST_F(FileStoreOnServer, ChunkOfOneByteWhoseDataIsNotBinaryHasAWrongLength)
{
    upload("f", "x");
    scratch().run(R"({"update": "fs.chunks", "updates": [{"q": {}, "u": {"$set": {"data": 5}}}]})");

    EXPECT_EQ(thrownText([&] { download("f"); }),
              "runtime_error: Download failed: chunk 0 of the stored file has a wrong length");
}

TEST_F(FileStoreOnServer, OptionalFieldThatIsMissingOrOfAnotherTypeIsLeftOut)
{
    dbc::UploadOptions options;
    options.id = Value(dbc::timeFromMilliseconds(7));
    std::istringstream source("x");
    store().upload("f", source, options);
    scratch().run(R"({"update": "fs.files", "updates": [{"q": {}, "u": {"$set": {"contentType": 1, "metadata": [2]},
                                                                       "$unset": {"uploadDate": ""}}}]})");

    const std::optional<FileInfo> info = store().find("f");

    ASSERT_TRUE(info);
    EXPECT_EQ(info->contentType, "");
    EXPECT_EQ(info->metadata, Value());
    EXPECT_EQ(info->uploaded.time_since_epoch().count(), 0);
    EXPECT_EQ(download("f"), "x");
}

TEST_F(FileStoreOnServer, RecordWithANumberOutOfRangeIsMalformed)
{
    upload("f", "x");
    const auto listed = [this](const char* field, const char* number) {
        scratch().run(std::string(R"({"update": "fs.files", "updates": [{"q": {}, "u": {"$set": {")") + field +
                      "\": " + number + "}}}]}");
        return thrownText([&] { store().list(); });
    };
    const char* const malformed = "runtime_error: Listing files failed: the record of a stored file is malformed";

    EXPECT_EQ(listed("length", "-1"), malformed);
    EXPECT_EQ(listed("length", "0"), "");
    EXPECT_EQ(listed("chunkSize", "-1"), malformed);
    EXPECT_EQ(listed("chunkSize", "1"), "");
    EXPECT_EQ(listed("chunkSize", "16777217"), malformed);
    EXPECT_EQ(listed("chunkSize", "16777216"), "");
    EXPECT_EQ(listed("chunkSize", "\"text\""), malformed);
}

TEST_F(FileStoreOnServer, StreamsThatFailEndTheCopy)
{
    upload("f", letters(35));
    std::ofstream target; // not open, so every write fails
    EXPECT_EQ(thrownText([&] { store().download("f", target); }),
              "runtime_error: The target of the download cannot be written");
    std::ifstream directory("/");
    EXPECT_EQ(thrownText([&] { store().upload("g", directory); }),
              "runtime_error: The source of the file cannot be read");
    std::ifstream missing("/nonexistent");
    EXPECT_EQ(thrownText([&] { store().upload("g", missing); }),
              "runtime_error: The source of the file cannot be read");
    EXPECT_THROW(store().uploadFile("g", "/nonexistent"), std::system_error);
    EXPECT_EQ(records(), 1U);
}

TEST_F(FileStoreOnServer, ArgumentsAreRefusedBeforeAnythingIsSent)
{
    gateway().clear();
    std::istringstream source;
    std::ostringstream target;
    dbc::UploadOptions options;
    options.chunkSize = 0;
    DataBaseClient unconnected;

    EXPECT_EQ(thrownText([&] { FileStore(unconnected, "").list(); }),
              "invalid_argument: Connection is not established. Run connect before");
    EXPECT_EQ(thrownText([&] { FileStore(client(), "").list(); }), "invalid_argument: Database name is empty");
    EXPECT_EQ(thrownText([&] { FileStore(client(), "d", "").list(); }),
              "invalid_argument: GridFS collection name is empty");
    EXPECT_EQ(thrownText([&] { store().upload("", source); }), "invalid_argument: GridFS file name is empty");
    EXPECT_EQ(thrownText([&] { store().upload("f", source, options); }),
              "invalid_argument: Chunk size is out of range");
    EXPECT_EQ(thrownText([&] { store().download("", target); }), "invalid_argument: GridFS file name is empty");
    EXPECT_EQ(thrownText([&] { store().open(""); }), "invalid_argument: GridFS file name is empty");
    EXPECT_EQ(thrownText([&] { store().find(""); }), "invalid_argument: GridFS file name is empty");
    EXPECT_EQ(thrownText([&] { store().remove(""); }), "invalid_argument: GridFS file name is empty");
    EXPECT_EQ(thrownText([&] { store().rename(Value(1), ""); }), "invalid_argument: GridFS file name is empty");
    const std::string zero("a\0b", 3);
    EXPECT_EQ(thrownText([&] { store().upload(zero, source); }),
              "invalid_argument: GridFS file name contains a zero byte");
    EXPECT_EQ(thrownText([&] { store().rename(Value(1), zero); }),
              "invalid_argument: GridFS file name contains a zero byte");
    options = {};
    options.contentType = zero;
    EXPECT_EQ(thrownText([&] { store().upload("f", source, options); }),
              "invalid_argument: Content type contains a zero byte");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
    const auto error = thrownError<dbc::ServerError>([&] { store().download("missing", target); });
    EXPECT_STREQ(error.what(), "Download failed: there is no such file");
    EXPECT_EQ(error.kind(), dbc::ErrorKind::NotFound);
}

TEST_F(FileStoreOnServer, UploadIsAcknowledgedDespiteAnUnacknowledgedWriteConcern)
{
    DataBaseClient careless;
    const std::string uri = TestServer::instance().uri();
    careless.connect(uri + (uri.find('?') == std::string::npos ? "?w=0" : "&w=0"));
    FileStore target(careless, database());
    std::istringstream source("content");
    upload("first", "x"); // creates the indexes
    gateway().clear();

    target.upload("f", source);

    for (const RecordedCommand& insert : gateway().commands("insert"))
        EXPECT_EQ(insert.json("writeConcern"), R"({ "w" : 1 })");
    EXPECT_EQ(download("f"), "content");
}

} // namespace
} // namespace test_support
