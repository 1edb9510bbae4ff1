#pragma once

#include "progress.h"
#include "raw_collection.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

/// The files of one GridFS store, with what DataBaseClient does not offer: an upload that shows how far it is and can
/// be interrupted, and a removal that counts.
class FileStore
{
public:
    /// @throws Failure when the database or the store cannot have such a name
    FileStore(const std::string& uri, const std::string& database, const std::string& store);

    /// Length of a file of this name, 0 if there is none. Of several files with one name it may be any.
    std::uint64_t lengthOf(const std::string& name);

    /// Stores what @p source holds from its position on. The file has a temporary name (dbc::partialFileName()) until
    /// everything is stored; if anything fails, or Ctrl-C is pressed, what was stored is removed.
    void upload(std::FILE* source, const std::string& name, bool quiet);

    /// Removes the files whose name is accepted.
    RawCollection::WriteResult remove(const std::function<bool(const std::string& name)>& isAccepted);

private:
    GridFsHandle open() const;

    const std::string m_database;
    const std::string m_store;
    RawCollection m_files;
};
