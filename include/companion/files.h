#pragma once

/// @file
/// Streams around the file operations of DataBaseClient: watching a file arrive, and storing what is not a local file.

#include "database_client.h"

#include <array>
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

namespace companion {

/// CRC-32 as in ISO 3309 and RFC 1952, the checksum that gzip and `crc32` give.
class Crc32
{
public:
    /// Takes in more bytes.
    void add(const char* bytes, std::size_t count) noexcept
    {
        for (const char* end = bytes + count; bytes != end; ++bytes)
            m_value = table()[(m_value ^ static_cast<unsigned char>(*bytes)) & 0xffU] ^ (m_value >> 8);
    }

    /// The checksum of the bytes so far.
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

/// What a progress function throws, or Download::cancel() causes: the copy ends and the exception reaches the caller of
/// readFile().
class Cancelled : public std::runtime_error
{
public:
    Cancelled() : std::runtime_error("Cancelled") {}
};

/// A stream for readFile() that hands on what arrives to another stream, counts it, computes its checksum, reports
/// progress, and can end the copy:
///
///     std::ofstream file("photo.jpg", std::ios::binary);
///     companion::Download download(file, [](std::uint64_t bytes) { std::cerr << bytes << '\r'; return true; });
///     client.readFile("shop", "files", "photo.jpg", &download);
///
/// readFile() itself does not look at a stream's state, so a failure of the target, too, ends the copy here.
class Download : public std::iostream
{
public:
    /// Called after each piece with the bytes so far; false cancels.
    using Progress = std::function<bool(std::uint64_t bytes)>;

    /// Passes what is written to it on to @p target, which must outlive it.
    explicit Download(std::ostream& target, Progress progress = nullptr)
        : std::iostream(nullptr), m_buffer(target, std::move(progress))
    {
        rdbuf(&m_buffer);
        exceptions(std::ios::badbit); // what the buffer throws goes on through readFile()
    }

    /// Bytes so far.
    std::uint64_t bytes() const noexcept { return m_buffer.m_bytes; }
    /// Checksum of the bytes so far.
    std::uint32_t crc32() const noexcept { return m_buffer.m_checksum.value(); }

private:
    class Buffer : public std::streambuf
    {
    public:
        Buffer(std::ostream& target, Progress progress) : m_target(target), m_progress(std::move(progress)) {}

        std::uint64_t m_bytes = 0;
        Crc32 m_checksum;

    protected:
        std::streamsize xsputn(const char* bytes, std::streamsize count) override
        {
            if (!m_target.write(bytes, count))
                throw std::runtime_error("The target of the download cannot be written");
            m_checksum.add(bytes, static_cast<std::size_t>(count));
            m_bytes += static_cast<std::uint64_t>(count);
            if (m_progress && !m_progress(m_bytes))
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

/// Fills a buffer of @p capacity bytes and returns how many it wrote, 0 at the end.
using Generator = std::function<std::size_t(char* buffer, std::size_t capacity)>;

/// A file without a name, gone when it is closed.
using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A temporary file with what @p generator gives, for what takes files alone: path() leads to it.
/// @throws std::system_error when it cannot be written; what the generator throws
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

/// A path to the file, for this process and as long as the file is open.
inline std::string path(const TemporaryFile& file)
{
    return "/dev/fd/" + std::to_string(::fileno(file.get()));
}

/// Stores what @p generator gives. The bytes pass through a temporary file, so memory stays flat whatever their number.
/// @throws std::system_error when the temporary file cannot be written; what the generator and writeFile() throw
inline void writeFile(DataBaseClient& client, const std::string& database, const std::string& gridFsCollection,
                      const std::string& fileName, const Generator& generator)
{
    const TemporaryFile spool = temporaryFile(generator);
    client.writeFile(database, gridFsCollection, fileName, path(spool));
}

/// Stores what a stream holds from its read position on.
/// @throws std::runtime_error when the stream breaks; otherwise as above
inline void writeFile(DataBaseClient& client, const std::string& database, const std::string& gridFsCollection,
                      const std::string& fileName, std::istream& source)
{
    writeFile(client, database, gridFsCollection, fileName, [&source](char* buffer, std::size_t capacity) {
        source.read(buffer, static_cast<std::streamsize>(capacity));
        if (source.bad())
            throw std::runtime_error("The source of the file cannot be read");
        return static_cast<std::size_t>(source.gcount());
    });
}

} // namespace companion
