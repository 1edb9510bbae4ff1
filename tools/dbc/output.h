#pragma once

#include "dbc/value.h"

#include <iosfwd>
#include <string>

/// How documents are written as JSON.
using Dialect = dbc::JsonFormat;

/// @throws Failure if the value has no JSON form
std::string toJson(const dbc::Value& value, Dialect dialect);

/// Writes documents one on a line, or as one array.
class DocumentWriter
{
public:
    DocumentWriter(std::ostream& stream, Dialect dialect, bool asArray)
        : m_stream(stream), m_dialect(dialect), m_asArray(asArray)
    {}

    /// @throws Failure when something could not be written, now or before
    void write(const dbc::Value& value);
    /// Closes the array. @throws Failure when something could not be written
    void finish();

private:
    void throwIfBroken() const;

    std::ostream& m_stream;
    const Dialect m_dialect;
    const bool m_asArray;
    bool m_isFirst = true;
};
