#pragma once

#include <string>

namespace tour {

/// A database that the tour has made on a server: dropped at the end, and also when the tour fails on the way.
class OwnDatabase
{
public:
    OwnDatabase(std::string uri, std::string name);
    OwnDatabase(const OwnDatabase&) = delete;
    OwnDatabase& operator=(const OwnDatabase&) = delete;
    /// Drops what drop() has not.
    ~OwnDatabase();
    /// @throws std::runtime_error with the server's answer
    void drop();

private:
    std::string m_uri;
    std::string m_name;
    bool m_dropped = false;
};

} // namespace tour
