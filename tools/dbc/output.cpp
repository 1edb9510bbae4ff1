#include "output.h"

#include "conversion/bson_handles.h"
#include "driver/driver.h"
#include "failure.h"

#include <ostream>

std::string toJson(const bson_t& bson, Dialect dialect)
{
    std::size_t length = 0;
    char* text = nullptr;
    switch (dialect)
    {
    case Dialect::Relaxed:
        text = bson_as_relaxed_extended_json(&bson, &length);
        break;
    case Dialect::Canonical:
        text = bson_as_canonical_extended_json(&bson, &length);
        break;
    case Dialect::Legacy:
        text = legacyJson(&bson, &length);
        break;
    }
    const BsonText owner(text);
    if (!text)
        throw Failure(ServerRefused, "a document holds text that is not UTF-8 and has no JSON form");
    return std::string(text, length);
}

void DocumentWriter::write(const bson_t& bson)
{
    if (m_asArray)
        m_stream << (m_isFirst ? "[\n" : ",\n");
    m_stream << toJson(bson, m_dialect);
    if (!m_asArray)
        m_stream << '\n';
    m_isFirst = false;
    throwIfBroken();
}

void DocumentWriter::finish()
{
    if (m_asArray)
        m_stream << (m_isFirst ? "[]\n" : "\n]\n");
    m_stream.flush();
    throwIfBroken();
}

void DocumentWriter::throwIfBroken() const
{
    if (!m_stream)
        throw Failure(UsageError, "the output cannot be written");
}
