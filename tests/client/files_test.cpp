// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "bson_handles.h"
#include "connected_client.h"
#include "pattern_text.h"
#include "scratch_folder.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <sstream>

#include <unistd.h>

namespace test_support {
namespace {

using Names = std::list<std::string>;

constexpr std::size_t chunkSize = 261'120; // the driver's

class StoredFile : public ConnectedClient
{
public:
    const ScratchFolder& folder() const { return m_folder; }
    std::string source(const std::string& text) { return m_folder.write("source", text); }

    void store(const std::string& name, const std::string& text)
    {
        client().writeFile(database(), "fs", name, source(text));
    }

    std::string stored(const std::string& name)
    {
        std::stringstream stream;
        client().readFile(database(), "fs", name, &stream);
        return stream.str();
    }

    /// What reading throws, and what had been written to the stream by then.
    std::pair<std::string, std::string> brokenRead(const std::string& name)
    {
        std::stringstream stream;
        const std::string text = thrownText([&] { client().readFile(database(), "fs", name, &stream); });
        return {text, stream.str()};
    }

    Names listed()
    {
        Names names;
        client().listFiles(database(), "fs", names);
        return names;
    }

    static constexpr const char* readingError = "runtime_error: Error occurred while read gridFS file operation";

private:
    ScratchFolder m_folder;
};

class StoredFileOfSize : public StoredFile, public testing::WithParamInterface<std::size_t>
{};

TEST_P(StoredFileOfSize, ComesBackByteForByte)
{
    const std::string text = patternText(GetParam());
    store("file", text);

    EXPECT_TRUE(stored("file") == text);
    EXPECT_EQ(scratch().count("fs.files"), 1U);
    EXPECT_EQ(scratch().count("fs.chunks"), (GetParam() + chunkSize - 1) / chunkSize);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StoredFileOfSize,
                         testing::Values(0, 1, 4095, 4096, 4097, 10'000, chunkSize - 1, chunkSize, chunkSize + 1,
                                         3 * chunkSize + 5),
                         testing::PrintToStringParamName());

// Counts what one unformatted write brings.
class PieceBuffer : public std::stringbuf
{
public:
    std::vector<std::streamsize> pieces;

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        pieces.push_back(count);
        return std::stringbuf::xsputn(bytes, count);
    }
};

TEST_F(StoredFile, IsCopiedInPiecesOf4096BytesInOrder)
{
    const std::string text = patternText(10'000);
    store("file", text);
    PieceBuffer buffer;
    std::iostream stream(&buffer);

    client().readFile(database(), "fs", "file", &stream);

    EXPECT_EQ(buffer.pieces, (std::vector<std::streamsize>{4096, 4096, 1808}));
    EXPECT_TRUE(buffer.str() == text);
}

TEST_F(StoredFile, IsCopiedInWholePiecesAcrossChunks)
{
    store("file", patternText(chunkSize + 4096));
    PieceBuffer buffer;
    std::iostream stream(&buffer);

    client().readFile(database(), "fs", "file", &stream);

    ASSERT_EQ(buffer.pieces.size(), 65U);
    EXPECT_TRUE(std::all_of(buffer.pieces.begin(), std::prev(buffer.pieces.end()),
                            [](std::streamsize size) { return size == 4096; }));
    EXPECT_EQ(buffer.pieces.back(), 3072);
}

TEST_F(StoredFile, IsAppendedAtTheWritePositionOfTheStream)
{
    store("file", "bc");
    std::stringstream stream;
    stream << "a";

    client().readFile(database(), "fs", "file", &stream);

    EXPECT_EQ(stream.str(), "abc");
    EXPECT_EQ(stream.tellg(), std::streampos(0));
}

TEST_F(StoredFile, IsNotCopiedToAFailedStreamAndThrowsNothing)
{
    store("file", "text");
    std::stringstream stream;
    stream.setstate(std::ios::failbit);

    client().readFile(database(), "fs", "file", &stream);

    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.fail());
}

TEST_F(StoredFile, IsFoundByItsExactName)
{
    store("file", "text");

    EXPECT_EQ(brokenRead("FILE").first,
              "runtime_error: Error occurred while mongoc_gridfs_find_one_by_filename operation");
    EXPECT_EQ(brokenRead("missing").first,
              "runtime_error: Error occurred while mongoc_gridfs_find_one_by_filename operation");
}

TEST_F(StoredFile, OfTheSameNameIsStoredBesideTheFirst)
{
    store("file", "first");
    store("file", "second");

    EXPECT_EQ(listed(), (Names{"file", "file"}));
    EXPECT_EQ(scratch().count("fs.files"), 2U);
}

TEST_F(StoredFile, MayBeNamedWithSpacesAndUtf8)
{
    store("two words \xC3\xA9\xE2\x82\xAC.txt", "text");

    EXPECT_EQ(stored("two words \xC3\xA9\xE2\x82\xAC.txt"), "text");
    EXPECT_EQ(listed(), Names{"two words \xC3\xA9\xE2\x82\xAC.txt"});
}

TEST_F(StoredFile, HasItsNameAndNoMoreThanWhatTheDriverAdds)
{
    store("file", "text");

    const std::string record = scratch().documents("fs.files").at(0);
    EXPECT_NE(record.find(R"("filename" : "file")"), std::string::npos) << record;
    EXPECT_NE(record.find(R"("chunkSize" : 261120)"), std::string::npos) << record;
    EXPECT_NE(record.find(R"("length" : 4)"), std::string::npos) << record;
    for (const char* const absent : {"md5", "contentType", "aliases", "metadata"})
        EXPECT_EQ(record.find(absent), std::string::npos) << record;
}

TEST_F(StoredFile, IsFoundOnlyInTheStoreItWasWrittenTo)
{
    client().writeFile(database(), "other", "file", source("text"));

    EXPECT_EQ(listed(), Names{});
    EXPECT_EQ(scratch().count("other.files"), 1U);
}

TEST_F(StoredFile, FromAMissingSourceThrows)
{
    EXPECT_EQ(thrownText([&] { client().writeFile(database(), "fs", "file", folder().path("missing")); }),
              "runtime_error: Error occurred while mongoc_stream_file_new_for_path operation");
    EXPECT_EQ(listed(), Names{});
}

TEST_F(StoredFile, FromADirectoryThrows)
{
    EXPECT_EQ(thrownText([&] { client().writeFile(database(), "fs", "file", folder().path()); }),
              "runtime_error: Error occurred while mongoc_gridfs_create_file_from_stream operation");
    EXPECT_EQ(listed(), Names{});
}

TEST_F(StoredFile, FromAnUnreadableSourceThrows)
{
    // Of this kind a source stays also for root: it opens, and reading it fails.
    EXPECT_EQ(thrownText([&] { client().writeFile(database(), "fs", "file", "/proc/self/mem"); }),
              "runtime_error: Error occurred while mongoc_gridfs_create_file_from_stream operation");
    EXPECT_EQ(listed(), Names{});
}

TEST_F(StoredFile, LeavesNoDescriptorOpen)
{
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return std::distance(begin(entries), end(entries));
    };
    store("file", "text"); // the connection takes one of its own
    const auto before = openDescriptors();

    store("file", "text");
    thrownText([&] { client().writeFile(database(), "fs", "file", folder().path()); });

    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(StoredFile, ClosesItsSourceAlsoWhenThatGotDescriptorZero)
{
    store("file", "text");
    const std::string path = source("text");
    const int saved = dup(STDIN_FILENO);
    close(STDIN_FILENO);

    client().writeFile(database(), "fs", "file", path);
    const bool closed = lseek(STDIN_FILENO, 0, SEEK_CUR) == -1 && errno == EBADF;

    if (saved >= 0)
    {
        dup2(saved, STDIN_FILENO);
        close(saved);
    }
    EXPECT_TRUE(closed);
}

TEST_F(StoredFile, WithAMissingChunkThrowsAndKeepsThePiecesBeforeIt)
{
    const std::string text = patternText(3 * chunkSize);
    store("file", text);
    scratch().run(R"({"delete": "fs.chunks", "deletes": [{"q": {"n": 1}, "limit": 0}]})");

    const auto [error, read] = brokenRead("file");

    EXPECT_EQ(error, readingError);
    EXPECT_EQ(read.size(), 63U * 4096);
    EXPECT_TRUE(text.compare(0, read.size(), read) == 0);
}

TEST_F(StoredFile, WithoutAnyChunkThrows)
{
    store("file", "text");
    scratch().run(R"({"delete": "fs.chunks", "deletes": [{"q": {}, "limit": 0}]})");

    EXPECT_EQ(brokenRead("file"), std::make_pair(std::string(readingError), std::string()));
}

class CutChunk : public StoredFile, public testing::WithParamInterface<int>
{
public:
    /// Puts a chunk of the first @p kept bytes in the place of chunk @p number.
    void cut(int number, const std::string& text, std::size_t kept)
    {
        const std::string part = text.substr(static_cast<std::size_t>(number) * chunkSize, kept);
        OwnedBson selector;
        OwnedBson change;
        bson_t set;
        BSON_APPEND_INT32(selector.get(), "n", number);
        BSON_APPEND_DOCUMENT_BEGIN(change.get(), "$set", &set);
        BSON_APPEND_BINARY(&set, "data", BSON_SUBTYPE_BINARY, reinterpret_cast<const std::uint8_t*>(part.data()),
                           static_cast<std::uint32_t>(part.size()));
        bson_append_document_end(change.get(), &set);
        const CollectionHandle chunks(
            mongoc_client_get_collection(scratch().client(), database().c_str(), "fs.chunks"));
        bson_error_t error{};
        ASSERT_TRUE(mongoc_collection_update_one(chunks.get(), selector.get(), change.get(), nullptr, nullptr, &error))
            << error.message;
    }
};

TEST_P(CutChunk, EndsTheReadingWithAnErrorInsteadOfLooping)
{
    const std::string text = patternText(2 * chunkSize + 100);
    store("file", text);
    for (const std::size_t kept : {0U, 1U, 50U})
    {
        cut(GetParam(), text, kept);
        const auto [error, read] = brokenRead("file");
        EXPECT_EQ(error, readingError) << kept << " bytes kept";
        EXPECT_EQ(read.size(), static_cast<std::size_t>(GetParam()) * chunkSize / 4096 * 4096);
        EXPECT_TRUE(text.compare(0, read.size(), read) == 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Chunks, CutChunk, testing::Values(0, 1, 2), testing::PrintToStringParamName());

TEST_F(CutChunk, LongerThanTheFileIsReadUpToTheLengthOfTheFile)
{
    const std::string text = patternText(4096);
    store("file", text);
    scratch().run(R"({"update": "fs.files", "updates": [{"q": {}, "u": {"$set": {"length": 4000}}}]})");

    EXPECT_TRUE(stored("file") == text.substr(0, 4000));
}

TEST_F(CutChunk, LongerThanTheFileIsReadUpToTheLengthOfTheFileInALaterPiece)
{
    const std::string text = patternText(10'000);
    store("file", text);
    scratch().run(R"({"update": "fs.files", "updates": [{"q": {}, "u": {"$set": {"length": 5000}}}]})");

    EXPECT_TRUE(stored("file") == text.substr(0, 5000));
}

TEST_F(StoredFile, InChunksOfOneByteIsRead)
{
    scratch().insert("fs.files", R"({"_id": 1, "length": 3, "chunkSize": 1, "filename": "file"})");
    scratch().insert("fs.chunks",
                     R"({"files_id": 1, "n": 0, "data": {"$binary": {"base64": "YQ==", "subType": "00"}}})");
    scratch().insert("fs.chunks",
                     R"({"files_id": 1, "n": 1, "data": {"$binary": {"base64": "Yg==", "subType": "00"}}})");
    scratch().insert("fs.chunks",
                     R"({"files_id": 1, "n": 2, "data": {"$binary": {"base64": "Yw==", "subType": "00"}}})");

    EXPECT_EQ(stored("file"), "abc");
}

TEST_F(StoredFile, WhoseRecordNamesNoUsableChunkSizeThrowsInsteadOfDividingByIt)
{
    for (const int size : {0, -5, 1})
    {
        const std::string name = "file" + std::to_string(size);
        // The id is a number: the driver loses the memory of any other when it refuses the record.
        scratch().insert("fs.files", R"({"_id": )" + std::to_string(size) + R"(, "length": 10, "chunkSize": )" +
                                         std::to_string(size) + R"(, "filename": ")" + name + R"("})");
        const auto [error, read] = brokenRead(name);
        // Some releases of the driver refuse such a record when they look for it, others leave it to the reading.
        EXPECT_TRUE(
            error == readingError ||
            error.rfind("runtime_error: Error occurred while mongoc_gridfs_find_one_by_filename operation: ", 0) == 0)
            << error;
        EXPECT_EQ(read, "");
    }
}

TEST_F(StoredFile, WhoseRecordNamesNoLengthReadsAsEmpty)
{
    scratch().insert("fs.files", R"({"_id": 1, "filename": "file"})");

    EXPECT_EQ(stored("file"), "");
}

using FileList = StoredFile;

TEST_F(FileList, OfAnEmptyStoreDoesNotChangeTheNames)
{
    Names names{"before"};
    client().listFiles(database(), "fs", names);
    EXPECT_EQ(names, Names{"before"});
}

TEST_F(FileList, IsSortedByNameAndAppended)
{
    for (const char* const name : {"b", "a", "C", "a"})
        store(name, "text");
    Names names{"before"};

    client().listFiles(database(), "fs", names);

    EXPECT_EQ(names, (Names{"before", "C", "a", "a", "b"}));
}

TEST_F(FileList, OmitsFilesWithoutAName)
{
    store("b", "text");
    scratch().insert("fs.files", R"({"_id": 1, "length": 0, "chunkSize": 10})");
    store("a", "text");

    EXPECT_EQ(listed(), (Names{"a", "b"}));
}

std::string numberedRecord(const std::string& name)
{
    std::string record = R"({"length": 0, "chunkSize": 10, "_id": )";
    return record.append(name).append(R"(, "filename": ")").append(name).append(R"("})");
}

TEST_F(FileList, HoldsMoreNamesThanOneBatch)
{
    Names expected;
    for (int index = 0; index < 150; ++index)
    {
        const std::string name = std::to_string(1000 + index);
        expected.push_back(name);
        scratch().insert("fs.files", numberedRecord(name));
    }
    EXPECT_EQ(listed(), expected);
}

TEST_F(FileList, ReportsARecordThatTheDriverCannotReadInsteadOfEndingThere)
{
    scratch().insert("fs.files", R"({"_id": 1, "length": 0, "chunkSize": 10, "filename": "a"})");
    scratch().insert("fs.files", R"({"_id": 2, "length": "text", "chunkSize": 10, "filename": "b"})");
    scratch().insert("fs.files", R"({"_id": 3, "length": 0, "chunkSize": 10, "filename": "c"})");
    Names names;
    // What the detail says is the driver's choice where it has one.
    const auto isReported = [](const std::string& text) {
        return text.rfind("runtime_error: Error occurred while list gridFS files operation: ", 0) == 0;
    };

    EXPECT_PRED1(isReported, thrownText([&] { client().listFiles(database(), "fs", names); }));
    EXPECT_EQ(names, Names{"a"});
    EXPECT_PRED1(isReported, thrownText([&] { client().removeFile(database(), "fs", "c"); }));

    scratch().run(R"({"delete": "fs.files", "deletes": [{"q": {"_id": 3}, "limit": 1}]})");
    EXPECT_PRED1(isReported, thrownText([&] { client().listFiles(database(), "fs", names); })) << "as the last record";
}

using FileRemoval = StoredFile;

TEST_F(FileRemoval, RemovesEveryFileOfTheNameIgnoringCase)
{
    for (const char* const name : {"readme.txt", "README.TXT", "readme.txt", "readme"})
        store(name, "text");

    client().removeFile(database(), "fs", "ReadMe.txt");

    EXPECT_EQ(listed(), Names{"readme"});
    EXPECT_EQ(scratch().count("fs.chunks"), 1U);
}

TEST_F(FileRemoval, OfANameThatIsNotStoredDoesNothing)
{
    store("file", "text");
    client().removeFile(database(), "fs", "other");
    EXPECT_EQ(listed(), Names{"file"});
}

TEST_F(FileRemoval, DoesNotRemoveFilesWithoutAName)
{
    scratch().insert("fs.files", R"({"_id": 1, "length": 0, "chunkSize": 10})");
    store("file", "text");

    client().removeFile(database(), "fs", "file");

    EXPECT_EQ(scratch().count("fs.files"), 1U);
}

TEST_F(StoredFile, OfSixtyFourMebibytesComesBackByteForByte)
{
    const std::string text = patternText(64U * 1024 * 1024);
    scratch().insert("fs.files", R"({"_id": 1, "filename": "large", "chunkSize": 261120, "length": )" +
                                     std::to_string(text.size()) + "}");
    const CollectionHandle chunks(mongoc_client_get_collection(scratch().client(), database().c_str(), "fs.chunks"));
    for (std::size_t number = 0; number * chunkSize < text.size(); ++number)
    {
        const std::string part = text.substr(number * chunkSize, chunkSize);
        OwnedBson chunk;
        BSON_APPEND_INT32(chunk.get(), "files_id", 1);
        BSON_APPEND_INT32(chunk.get(), "n", static_cast<std::int32_t>(number));
        BSON_APPEND_BINARY(chunk.get(), "data", BSON_SUBTYPE_BINARY, reinterpret_cast<const std::uint8_t*>(part.data()),
                           static_cast<std::uint32_t>(part.size()));
        bson_error_t error{};
        ASSERT_TRUE(mongoc_collection_insert_one(chunks.get(), chunk.get(), nullptr, nullptr, &error)) << error.message;
    }
    gateway().record(false);

    const std::string back = stored("large");
    gateway().record(true);

    EXPECT_TRUE(back == text);
}

} // namespace
} // namespace test_support
