// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Functions for the file operations of DataBaseClient: report the progress of a download, and upload data that is not
/// in a local file.

#include "database_client.h"
#include "dbc/errors.h"
#include "dbc/results.h"
#include "object_properties.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <system_error>
#include <utility>

namespace dbc {

/// CRC-32 as in ISO 3309 and RFC 1952: the checksum of gzip and of the `crc32` program. Not thread-safe.
/// @since 1.0
class Crc32
{
public:
    /// Adds bytes to the checksum.
    void add(const char* bytes, std::size_t count) noexcept
    {
        for (const char* end = bytes + count; bytes != end; ++bytes)
            m_value = table()[(m_value ^ static_cast<unsigned char>(*bytes)) & 0xffU] ^ (m_value >> 8);
    }

    /// Returns the checksum of the bytes so far.
    std::uint32_t value() const noexcept { return m_value ^ 0xffffffffU; }

private:
    static const std::array<std::uint32_t, 256>& table() noexcept
    {
        static const auto values = [] {
            std::array<std::uint32_t, 256> result{};
            for (std::uint32_t index = 0; index < result.size(); ++index)
            {
                result[index] = index;
                for (int bit = 0; bit < 8; ++bit)
                    result[index] = (result[index] >> 1) ^ (result[index] & 1U ? 0xedb88320U : 0U);
            }
            return result;
        }();
        return values;
    }

    std::uint32_t m_value = 0xffffffffU;
};

/// A stream for DataBaseClient::readFile(). It writes the bytes to another stream, counts them, computes their checksum
/// and reports the progress. It can also cancel the transfer:
///
///     std::ofstream file("photo.jpg", std::ios::binary);
///     dbc::Download download(file, [](std::uint64_t bytes) { std::cerr << bytes << '\r'; return true; });
///     client.readFile("shop", "files", "photo.jpg", &download);
///
/// readFile() does not check the state of a stream, so this stream throws: Cancelled if the progress function returned
/// false, or std::runtime_error "The target of the download cannot be written". Not thread-safe.
/// @since 1.0
class Download : public std::iostream
{
public:
    /// Called after each write of up to 4096 bytes, with the number of bytes so far. Return false to cancel.
    using Progress = std::function<bool(std::uint64_t bytes)>;

    /// Writes to @p target, which must outlive this object.
    explicit Download(std::ostream& target, Progress progress = nullptr)
        : std::iostream(nullptr), m_buffer(target, std::move(progress))
    {
        rdbuf(&m_buffer);
        exceptions(std::ios::badbit); // exceptions of the buffer must leave readFile()
    }

    /// Number of bytes so far.
    std::uint64_t bytes() const noexcept { return m_buffer.byteCount; }
    /// Checksum of the bytes so far.
    std::uint32_t crc32() const noexcept { return m_buffer.checksum.value(); }

private:
    class Buffer : public std::streambuf
    {
    public:
        Buffer(std::ostream& target, Progress progress) : m_target(target), m_progress(std::move(progress)) {}

        std::uint64_t byteCount = 0;
        Crc32 checksum;

    protected:
        std::streamsize xsputn(const char* bytes, std::streamsize count) override
        {
            if (!m_target.write(bytes, count))
                throw std::runtime_error("The target of the download cannot be written");
            checksum.add(bytes, static_cast<std::size_t>(count));
            byteCount += static_cast<std::uint64_t>(count);
            if (m_progress && !m_progress(byteCount))
                throw Cancelled();
            return count;
        }

        int_type overflow(int_type character) override
        {
            if (traits_type::eq_int_type(character, traits_type::eof()))
                return traits_type::not_eof(character);
            const char byte = traits_type::to_char_type(character);
            xsputn(&byte, 1);
            return character;
        }

    private:
        std::ostream& m_target;
        Progress m_progress;
    };

    Buffer m_buffer;
};

/// A function of the caller that writes up to @p capacity bytes to @p buffer and returns their number; 0 at the end.
using Generator = std::function<std::size_t(char* buffer, std::size_t capacity)>;

/// An open file without a name. The destructor closes it, which removes it.
using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// Creates a temporary file and writes the bytes of @p generator to it. Use temporaryFilePath() to pass it to functions
/// that need a path. Passes on exceptions of the generator.
/// @throws std::system_error if the file cannot be written
inline TemporaryFile temporaryFile(const Generator& generator)
{
    TemporaryFile spool(std::tmpfile(), &std::fclose);
    const auto fail = [] { throw std::system_error(errno, std::generic_category(), "Temporary file"); };
    if (!spool)
        fail();
    std::array<char, 65536> buffer;
    while (const std::size_t count = generator(buffer.data(), buffer.size()))
    {
        if (std::fwrite(buffer.data(), 1, count, spool.get()) != count)
            fail();
    }
    if (std::fflush(spool.get()) != 0)
        fail();
    return spool;
}

/// Returns a path of an open file. It is valid in this process, until the file is closed.
inline std::string temporaryFilePath(const TemporaryFile& file)
{
    return "/dev/fd/" + std::to_string(::fileno(file.get()));
}

/// Separates the final name and the object id in the name of an incomplete upload.
inline constexpr const char* partialFileMark = ".partial-";

/// Returns the name of a file during the upload by the writeFile() functions below: "NAME.partial-ID". @p id is the
/// result of DataBaseClient::createId(), so two uploads of the same name have different temporary names.
inline std::string partialFileName(const std::string& fileName, const std::string& id)
{
    return fileName + partialFileMark + id;
}

/// Returns NAME for "NAME.partial-ID", where ID has 24 lower-case hexadecimal digits. Returns an empty string for any
/// other name.
inline std::string finalFileName(const std::string& storedName)
{
    constexpr std::size_t idLength = 24;
    const std::string mark = partialFileMark;
    if (storedName.size() <= mark.size() + idLength)
        return std::string();
    const std::size_t idBegin = storedName.size() - idLength;
    const bool hasId = storedName.find_first_not_of("0123456789abcdef", idBegin) == std::string::npos;
    const std::size_t nameLength = idBegin - mark.size();
    return hasId && storedName.compare(nameLength, mark.size(), mark) == 0 ? storedName.substr(0, nameLength)
                                                                           : std::string();
}

namespace detail {

/// Returns "_id" and "length" of one match, or an empty result.
inline Results findOne(DataBaseClient& client, const std::string& database, const std::string& collection,
                       const ObjectProperties& query)
{
    ObjectProperties fields;
    fields.setValueInt32("_id", 1);
    fields.setValueInt32("length", 1);
    Results found;
    client.find(database, collection, query, fields, found, 1, 0);
    return found;
}

inline void giveFinalName(DataBaseClient& client, const std::string& database, const std::string& gridFsCollection,
                          const std::string& partialName, const std::string& finalName)
{
    const std::string files = gridFsCollection + ".files";
    const std::string chunks = gridFsCollection + ".chunks";
    const auto require = [](bool isThere) {
        if (!isThere)
            throw std::runtime_error("The file was removed while it was being stored");
    };
    ObjectProperties file;
    file.setValueString("filename", partialName);
    const Results stored = findOne(client, database, files, file);
    require(!stored.empty());
    const std::string id = stored.begin()->valueAsId("_id", "");

    // Another program may have removed the incomplete file. The driver then stores the remaining chunks for a new file
    // document, but the first chunk is missing.
    ObjectProperties firstChunk;
    firstChunk.setValueId("files_id", id);
    firstChunk.setValueInt32("n", 0);
    require(stored.begin()->valueAsInt64("length", 0) == 0 || !findOne(client, database, chunks, firstChunk).empty());

    ObjectProperties name;
    name.setValueString("filename", finalName);
    client.update(database, files, file, name, UpdateFlagNone, UpdateCommandSet);

    ObjectProperties renamed;
    renamed.setValueId("_id", id);
    renamed.setValueString("filename", finalName);
    require(!findOne(client, database, files, renamed).empty());
}

// A stream that was read to its end has failed too, but it only has no more bytes.
inline void requireReadable(const std::istream& source)
{
    if (source.bad() || (source.fail() && !source.eof()))
        throw std::runtime_error("The source of the file cannot be read");
}

} // namespace detail

/// Stores the bytes of @p generator so that no other program sees an incomplete file under this name. A stored file
/// with the same name is not replaced. Writes the bytes to a temporary local file, so memory use does not depend on the
/// length. Then uploads them under partialFileName() and renames the file when it is complete. After a failure, removes
/// the stored bytes and passes on the exception.
///
/// If the process ends during the upload, or the server becomes unreachable, the file stays under its temporary name.
/// `dbc files ls` marks it, and `dbc files rm --partial` removes it. If the connection breaks while the file is
/// renamed, an exception is thrown although the file may be complete.
///
/// Passes on exceptions of the generator.
/// @throws std::system_error      the temporary local file cannot be written
/// @throws std::invalid_argument  no connection; an empty name
/// @throws std::runtime_error     "Error occurred while <step> operation..."; "Find error...." or "Updating
///                                failed..." if the file cannot be renamed; "The file was removed while it was being
///                                stored"
inline void writeFile(DataBaseClient& client, const std::string& database, const std::string& gridFsCollection,
                      const std::string& fileName, const Generator& generator)
{
    const TemporaryFile spool = temporaryFile(generator);
    // The driver cuts a name at its first zero byte. The client throws for an empty name.
    const std::string finalName = fileName.substr(0, fileName.find('\0'));
    const std::string partialName = finalName.empty() ? finalName : partialFileName(finalName, client.createId());
    try
    {
        client.writeFile(database, gridFsCollection, partialName, temporaryFilePath(spool));
        detail::giveFinalName(client, database, gridFsCollection, partialName, finalName);
    }
    catch (...)
    {
        try
        {
            client.removeFile(database, gridFsCollection, partialName);
        }
        catch (const std::exception&) // the caller gets the first exception
        {}
        throw;
    }
}

/// Stores the bytes of @p source from its read position on, as the overload above does.
/// @throws std::runtime_error  "The source of the file cannot be read", or could not be opened; otherwise as the
///                             overload above
inline void writeFile(DataBaseClient& client, const std::string& database, const std::string& gridFsCollection,
                      const std::string& fileName, std::istream& source)
{
    detail::requireReadable(source); // otherwise a file that could not be opened would be stored as an empty one
    writeFile(client, database, gridFsCollection, fileName, [&source](char* buffer, std::size_t capacity) {
        source.read(buffer, static_cast<std::streamsize>(capacity));
        detail::requireReadable(source);
        return static_cast<std::size_t>(source.gcount());
    });
}

} // namespace dbc
