// Bytes of a server, taken or refused before the driver sees them.
//
// Input: what was asked, the size of the pieces, and the bytes.

#include "bson_walk.h"
#include "database_client/reply_check.h"
#include "require.h"

#include <bson/bson.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// The beginning of a request, as far as the check looks: the header, and the name of the command.
Bytes request(std::uint8_t choice)
{
    constexpr std::uint8_t opMsgLow = 0xDD;
    constexpr std::uint8_t opQueryLow = 0xD4;
    Bytes bytes(40);
    bytes[0] = static_cast<std::uint8_t>(bytes.size());
    bytes[12] = choice % 3 == 0 ? opQueryLow : opMsgLow;
    bytes[13] = 0x07;
    if (choice % 3 == 2)
        std::copy_n("listIndexes", 12, bytes.begin() + 26);
    return bytes;
}

bool isTaken(const Bytes& asked, const std::uint8_t* data, std::size_t size, std::size_t pieceSize, bool usesScram)
{
    ReplyCheck check(usesScram);
    check.sent(asked.data(), asked.size());
    for (std::size_t at = 0; at < size; at += pieceSize)
    {
        // In storage of exactly its size: a sanitizer sees every byte read behind it.
        const std::size_t count = std::min(pieceSize, size - at);
        const std::unique_ptr<std::uint8_t[]> piece(new std::uint8_t[count]);
        std::copy_n(data + at, count, piece.get());
        if (!check.received(piece.get(), count))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const Bytes asked = request(data[0]);
    const bool usesScram = data[0] % 2 == 0;
    const std::size_t pieceSize = 1U + data[1];
    data += 2;
    size -= 2;
    const bool taken = isTaken(asked, data, size, std::max<std::size_t>(size, 1), usesScram);
    require(isTaken(asked, data, size, pieceSize, usesScram) == taken, "the size of the pieces does not matter");
    if (!taken || size < 16)
        return 0;
    std::uint32_t length = 0;
    std::copy_n(data, sizeof length, reinterpret_cast<std::uint8_t*>(&length));
    length = BSON_UINT32_FROM_LE(length);
    if (length > size)
        return 0; // not all of it came yet
    const std::size_t begin = data[12] == 1 ? 36 : 21;
    bson_t document;
    require(length > begin && bson_init_static(&document, data + begin, length - begin),
            "a reply ends with its document");
    require(test_support::canBeEntered(&document), "every document of a reply can be entered");
    return 0;
}
