// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/files.h"

#include "object_properties.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <list>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using dbc::Cancelled;
using dbc::Crc32;
using dbc::Download;
using test_support::thrownText;

// Reads and writes as the client does, without a server: pieces of 4096 bytes, the stream's state never looked at.
class LocalFiles : public DataBaseClient
{
public:
    std::string content;

    void readFile(const std::string& /*database*/, const std::string& /*gridFsCollection*/,
                  const std::string& /*fileName*/, std::iostream* stream) override
    {
        for (std::size_t begin = 0; begin < content.size(); begin += 4096)
        {
            stream->write(content.data() + begin,
                          static_cast<std::streamsize>(std::min<std::size_t>(4096, content.size() - begin)));
        }
    }

    void writeFile(const std::string& /*database*/, const std::string& /*gridFsCollection*/,
                   const std::string& fileName, const std::string& inputFilePath) override
    {
        std::ifstream file(inputFilePath, std::ios::binary);
        ASSERT_TRUE(file.is_open());
        content.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        name = fileName;
        steps.emplace_back("write");
        if (writeFails)
            throw std::runtime_error("no write");
    }

    void update(const std::string& /*database*/, const std::string& collection, const ObjectProperties& query,
                const ObjectProperties& document, const UpdateFlag& flag, const UpdateCommand& command) override
    {
        EXPECT_EQ(collection, "fs.files");
        EXPECT_EQ(query.valueAsString("filename", ""), name);
        EXPECT_EQ(flag, UpdateFlagNone);
        EXPECT_EQ(command, UpdateCommandSet);
        steps.emplace_back("update");
        if (updateFails)
            throw std::runtime_error("no update");
        temporaryName = name;
        name = document.valueAsString("filename", "");
    }

    // Whatever is asked for is there.
    void find(const std::string& /*database*/, const std::string& /*collection*/, const ObjectProperties& /*query*/,
              const ObjectProperties& /*projection*/, std::list<ObjectProperties*>& results, int /*limit*/,
              int /*skip*/) override
    {
        auto document = std::make_unique<ObjectProperties>();
        document->setValueId("_id", "507f1f77bcf86cd799439011");
        results.push_back(document.release());
    }

    void removeFile(const std::string& /*database*/, const std::string& /*gridFsCollection*/,
                    const std::string& fileName) override
    {
        EXPECT_EQ(fileName, name);
        steps.emplace_back("remove");
        if (removeFails)
            throw std::runtime_error("no remove");
        content.clear();
    }

    std::string name;
    std::string temporaryName;
    std::vector<std::string> steps;
    bool writeFails = false;
    bool updateFails = false;
    bool removeFails = false;
};

TEST(Crc32, ReturnsTheCheckValueOfItsDefinition)
{
    Crc32 checksum;
    EXPECT_EQ(checksum.value(), 0U);
    checksum.add("1234", 4);
    checksum.add("56789", 5);
    EXPECT_EQ(checksum.value(), 0xcbf43926U);
}

TEST(Download, ForwardsCountsAndChecksItsBytes)
{
    LocalFiles client;
    client.content.assign(10000, 'x');
    std::ostringstream target;
    std::vector<std::uint64_t> progress;
    Download download(target, [&progress](std::uint64_t bytes) {
        progress.push_back(bytes);
        return true;
    });

    client.readFile("d", "fs", "name", &download);

    EXPECT_EQ(target.str(), client.content);
    EXPECT_EQ(download.bytes(), 10000U);
    EXPECT_EQ(progress, (std::vector<std::uint64_t>{4096, 8192, 10000}));
    Crc32 expected;
    expected.add(client.content.data(), client.content.size());
    EXPECT_EQ(download.crc32(), expected.value());
}

TEST(Download, CancelledEndsTheCopyWhereAnOrdinaryStreamInAFailedStateDoesNot)
{
    LocalFiles client;
    client.content.assign(100 * 4096, 'x');
    std::ostringstream target;
    int pieces = 0;
    Download download(target, [&pieces](std::uint64_t) { return ++pieces < 3; });

    EXPECT_THROW(client.readFile("d", "fs", "name", &download), Cancelled);
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(target.str().size(), 3U * 4096U);

    std::stringstream failed;
    failed.setstate(std::ios::badbit);
    EXPECT_NO_THROW(client.readFile("d", "fs", "name", &failed)) << "the trap: the copy goes on into nothing";
}

TEST(Download, EndsTheCopyWhenItsTargetFails)
{
    LocalFiles client;
    client.content = "x";
    std::ofstream target("/dev/full", std::ios::binary);
    target.rdbuf()->pubsetbuf(nullptr, 0);
    target.setstate(std::ios::badbit);
    Download download(target);
    EXPECT_THROW(client.readFile("d", "fs", "name", &download), std::runtime_error);
    EXPECT_EQ(download.bytes(), 0U);
}

TEST(Download, AcceptsSingleCharacters)
{
    std::ostringstream target;
    Download download(target);
    download.put('a').put('b');
    EXPECT_EQ(target.str(), "ab");
    EXPECT_EQ(download.bytes(), 2U);
}

TEST(PartialFileName, EndsInAMarkAndAnObjectId)
{
    const std::string name = dbc::partialFileName("photo.jpg", "507f1f77bcf86cd799439011");
    EXPECT_EQ(name, "photo.jpg.partial-507f1f77bcf86cd799439011");
    EXPECT_EQ(dbc::finalFileName(name), "photo.jpg");
    EXPECT_EQ(dbc::finalFileName(dbc::partialFileName(name, DataBaseClient().createId())), name);
}

TEST(PartialFileName, IsNotRecognisedInOtherNames)
{
    for (const char* const name :
         {"", "photo.jpg", ".partial-507f1f77bcf86cd799439011", "a.partial-", "a.partial-507f1f77bcf86cd79943901",
          "a.partial-507f1f77bcf86cd7994390110", "a.partial-507f1f77bcf86cd79943901g",
          "a.partial-507F1F77BCF86CD799439011", "a.partial_507f1f77bcf86cd799439011", "507f1f77bcf86cd799439011"})
        EXPECT_EQ(dbc::finalFileName(name), "") << name;
}

TEST(StoringAStream, SetsTheFinalNameWhenEverythingIsStored)
{
    LocalFiles client;
    std::istringstream source("text");

    dbc::writeFile(client, "d", "fs", "name", source);

    EXPECT_EQ(client.name, "name");
    EXPECT_EQ(dbc::finalFileName(client.temporaryName), "name");
    EXPECT_EQ(client.steps, (std::vector<std::string>{"write", "update"}));
}

TEST(StoringAStream, ReadsTheNameUpToItsFirstZeroByteAsTheDriverDoes)
{
    LocalFiles client;
    std::istringstream source("text");

    dbc::writeFile(client, "d", "fs", std::string("name\0more", 9), source);

    EXPECT_EQ(client.name, "name");
    EXPECT_EQ(dbc::finalFileName(client.temporaryName), "name");
}

TEST(StoringAStream, UsesAnotherTemporaryNameEveryTime)
{
    LocalFiles client;
    std::istringstream source("text");
    dbc::writeFile(client, "d", "fs", "name", source);
    const std::string first = client.temporaryName;

    dbc::writeFile(client, "d", "fs", "name", source);

    EXPECT_NE(client.temporaryName, first);
}

TEST(StoringAStream, RemovesWhatWasStoredWhenAStepFails)
{
    for (bool LocalFiles::*const step : {&LocalFiles::writeFails, &LocalFiles::updateFails})
    {
        LocalFiles client;
        client.*step = true;
        std::istringstream source("text");
        EXPECT_THROW(dbc::writeFile(client, "d", "fs", "name", source), std::runtime_error);
        EXPECT_EQ(client.steps.back(), "remove");
        EXPECT_EQ(client.content, "");
    }
}

TEST(StoringAStream, ReportsTheFirstFailureWhenTheRemovalFailsToo)
{
    LocalFiles client;
    client.writeFails = client.removeFails = true;
    std::istringstream source("text");
    EXPECT_EQ(thrownText([&] { dbc::writeFile(client, "d", "fs", "name", source); }), "runtime_error: no write");
}

TEST(StoringAStream, PassesAnEmptyNameToTheClient)
{
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/");
    std::istringstream source("text");
    EXPECT_EQ(thrownText([&] { dbc::writeFile(client, "d", "fs", "", source); }),
              "invalid_argument: GridFS file name is empty");
}

TEST(StoringAStream, ThatBreaksStoresNothing)
{
    struct BreakingBuffer : std::streambuf
    {
        int_type underflow() override { throw std::domain_error("the medium is gone"); }
    };
    LocalFiles client;
    client.content = "before";
    BreakingBuffer buffer;
    std::istream source(&buffer);
    EXPECT_THROW(dbc::writeFile(client, "d", "fs", "name", source), std::runtime_error);
    EXPECT_EQ(client.content, "before");
    EXPECT_TRUE(client.steps.empty());
}

TEST(StoringAStream, ThatIsNotOpenStoresNothing)
{
    LocalFiles client;
    std::ifstream source("/nonexistent");

    EXPECT_THROW(dbc::writeFile(client, "d", "fs", "name", source), std::runtime_error);

    EXPECT_TRUE(client.steps.empty());
}

TEST(StoringAStream, ThatWasReadToItsEndStoresAnEmptyFile)
{
    LocalFiles client;
    client.content = "before";
    std::istringstream source("abc");
    std::string word;
    source >> word >> word; // the second one fails

    dbc::writeFile(client, "d", "fs", "name", source);

    EXPECT_EQ(client.content, "");
}

TEST(StoringAStream, StoresItFromItsReadPositionOn)
{
    LocalFiles client;
    std::string text(200000, '\0');
    for (std::size_t index = 0; index < text.size(); ++index)
        text[index] = static_cast<char>(index * 7);
    std::istringstream source("skip" + text);
    source.ignore(4);

    dbc::writeFile(client, "d", "fs", "name", source);

    EXPECT_EQ(client.content, text);
}

TEST(StoringAGenerator, StoresItsBytesUntilItReturnsNothing)
{
    LocalFiles client;
    int calls = 0;
    dbc::writeFile(client, "d", "fs", "name", [&calls](char* buffer, std::size_t capacity) -> std::size_t {
        EXPECT_GT(capacity, 2U);
        buffer[0] = 'a';
        buffer[1] = 'b';
        return ++calls <= 3 ? 2 : 0;
    });
    EXPECT_EQ(client.content, "ababab");
}

TEST(StoringAGenerator, ThatThrowsInTheMiddleStoresNothing)
{
    LocalFiles client;
    client.content = "before";
    int calls = 0;
    const auto store = [&] {
        dbc::writeFile(client, "d", "fs", "name", [&calls](char*, std::size_t capacity) {
            if (++calls > 10)
                throw std::domain_error("no more");
            return capacity;
        });
    };
    EXPECT_THROW(store(), std::domain_error);
    EXPECT_EQ(client.content, "before");
    EXPECT_TRUE(client.steps.empty());
}

} // namespace
