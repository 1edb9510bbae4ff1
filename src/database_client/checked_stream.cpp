#include "database_client/checked_stream.h"

#include "database_client/reply_check.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace {

struct CheckedStream final : mongoc_stream_t
{
    CheckedStream(StreamHandle inner, bool usesScram) noexcept;

    StreamHandle m_inner;
    ReplyCheck m_check;
    bool m_isRefused = false;
};

CheckedStream& checked(mongoc_stream_t* stream)
{
    return static_cast<CheckedStream&>(*stream);
}

mongoc_stream_t* innerOf(mongoc_stream_t* stream)
{
    return checked(stream).m_inner.get();
}

// Where bytes lie that go through a stream. The driver moves its own vectors along while it reads and writes.
class Pieces
{
public:
    Pieces(const mongoc_iovec_t* vectors, std::size_t count)
        : m_vectors(static_cast<mongoc_iovec_t*>(bson_malloc(count * sizeof *vectors)))
    {
        std::copy_n(vectors, count, m_vectors.get());
    }

    // Hands on the first @p count bytes, until a piece is not taken.
    template <typename Take>
    bool each(ssize_t count, Take take) const
    {
        const mongoc_iovec_t* vector = m_vectors.get();
        for (auto left = static_cast<std::size_t>(std::max<ssize_t>(count, 0)); left > 0; ++vector)
        {
            const std::size_t size = std::min(left, vector->iov_len);
            if (!take(static_cast<const std::uint8_t*>(vector->iov_base), size))
                return false;
            left -= size;
        }
        return true;
    }

private:
    std::unique_ptr<mongoc_iovec_t, DestroyWith<bson_free>> m_vectors;
};

void destroyChecked(mongoc_stream_t* stream)
{
    checked(stream).~CheckedStream();
    bson_free(stream);
}

// The driver's way to be rid of a stream that broke: this frees it too.
void failChecked(mongoc_stream_t* stream)
{
    mongoc_stream_failed(checked(stream).m_inner.release());
    destroyChecked(stream);
}

ssize_t writeChecked(mongoc_stream_t* stream, mongoc_iovec_t* vectors, std::size_t vectorCount, std::int32_t timeout)
{
    const Pieces pieces(vectors, vectorCount);
    const ssize_t written = mongoc_stream_writev(innerOf(stream), vectors, vectorCount, timeout);
    pieces.each(written, [stream](const std::uint8_t* bytes, std::size_t count) {
        checked(stream).m_check.sent(bytes, count);
        return true;
    });
    return written;
}

ssize_t readChecked(mongoc_stream_t* stream, mongoc_iovec_t* vectors, std::size_t vectorCount, std::size_t least,
                    std::int32_t timeout)
{
    CheckedStream& self = checked(stream);
    if (!self.m_isRefused)
    {
        const Pieces pieces(vectors, vectorCount);
        const ssize_t got = mongoc_stream_readv(self.m_inner.get(), vectors, vectorCount, least, timeout);
        self.m_isRefused = !pieces.each(
            got, [&self](const std::uint8_t* bytes, std::size_t count) { return self.m_check.received(bytes, count); });
        if (!self.m_isRefused)
            return got;
    }
    errno = EBADMSG;
    return -1;
}

CheckedStream::CheckedStream(StreamHandle inner, bool usesScram) noexcept
    : mongoc_stream_t{}, m_inner(std::move(inner)), m_check(usesScram)
{
    type = 100; // the driver's own have small numbers
    destroy = destroyChecked;
    failed = failChecked;
    writev = writeChecked;
    readv = readChecked;
    close = [](mongoc_stream_t* stream) { return mongoc_stream_close(innerOf(stream)); };
    flush = [](mongoc_stream_t* stream) { return mongoc_stream_flush(innerOf(stream)); };
    setsockopt = [](mongoc_stream_t* stream, int level, int name, void* value, mongoc_socklen_t size) {
        return mongoc_stream_setsockopt(innerOf(stream), level, name, value, size);
    };
    get_base_stream = innerOf;
    check_closed = [](mongoc_stream_t* stream) { return mongoc_stream_check_closed(innerOf(stream)); };
    timed_out = [](mongoc_stream_t* stream) { return mongoc_stream_timed_out(innerOf(stream)); };
    should_retry = [](mongoc_stream_t* stream) {
        return !checked(stream).m_isRefused && mongoc_stream_should_retry(innerOf(stream));
    };
}

} // namespace

StreamHandle checkedStream(StreamHandle inner, bool usesScram) noexcept
{
    // From where the driver's own streams come: it would not survive an exception that passed through it.
    void* const place = bson_malloc0(sizeof(CheckedStream));
    return StreamHandle(new (place) CheckedStream(std::move(inner), usesScram));
}
