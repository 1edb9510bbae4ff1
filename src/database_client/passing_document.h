#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A number as BSON and the wire protocol write it, the lowest byte first.
inline std::uint32_t littleEndian(const std::uint8_t* bytes) noexcept
{
    return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U |
           std::uint32_t{bytes[3]} << 24U;
}

/// A BSON document that goes by in pieces of any size, and the question whether it is well formed: every length within
/// the one around it, every kind a known one, every text and every document with its end. Format: https://bsonspec.org
///
/// Nothing is kept of it but where the documents that are open end: it takes neither memory nor stack, whatever it
/// holds.
class PassingDocument
{
public:
    /// Many times what servers nest.
    static constexpr std::size_t deepest = 1024;

    /// Forgets what went by. The next document has to be of @p length bytes.
    void start(std::uint32_t length) noexcept;
    /// Linear in @p count. @return false when the document is not well formed, is nested too deep, or ended before the
    /// last of these bytes; nothing more may be asked then
    bool take(const std::uint8_t* bytes, std::size_t count) noexcept;
    bool isWhole() const noexcept { return m_depth == 0; }

private:
    enum class Part : std::uint8_t
    {
        DocumentLength,
        Kind,
        Key,
        Pattern,
        Options,
        TextLength,
        TextEnd,
        BinaryLength,
        ScopedCodeLength,
        Content, ///< bytes that may be any
    };

    bool takeWholeElement(const std::uint8_t* bytes, std::size_t count) noexcept;
    bool takePart(const std::uint8_t* bytes, std::size_t count) noexcept;
    bool takeKind(std::uint8_t kind) noexcept;
    void takeName(const std::uint8_t* bytes, std::size_t count) noexcept;
    bool takeLength(const std::uint8_t* bytes, std::size_t count) noexcept;
    bool takeTextEnd(std::uint8_t byte) noexcept;
    void takeContent(std::size_t count) noexcept;

    void beginValue() noexcept;
    bool beginMeasured(std::uint32_t length) noexcept;
    bool beginDocument(std::uint32_t length) noexcept;
    void expectContent(std::uint64_t size, Part next = Part::Kind) noexcept;

    std::uint32_t m_position = 0;
    std::size_t m_depth = 0;
    std::uint64_t m_contentLeft = 0;
    std::uint32_t m_length = 0; ///< as much as has come of one
    std::uint8_t m_lengthBytes = 0;
    std::uint8_t m_kind = 0; ///< of the element whose value comes
    Part m_part = Part::DocumentLength;
    Part m_afterContent = Part::Kind;
    std::array<std::uint32_t, deepest> m_ends{}; ///< of the open documents, outermost first
};
