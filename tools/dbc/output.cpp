#include "output.h"

#include "failure.h"

#include <ostream>
#include <stdexcept>

std::string toJson(const dbc::Value& value, Dialect dialect)
{
    try
    {
        return value.toJson(dialect);
    }
    catch (const std::invalid_argument& error)
    {
        throw Failure(ServerRefused, std::string("a document cannot be written as JSON; ") + error.what());
    }
}

void DocumentWriter::write(const dbc::Value& value)
{
    if (m_asArray)
        m_stream << (m_isFirst ? "[\n" : ",\n");
    m_stream << toJson(value, m_dialect);
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
