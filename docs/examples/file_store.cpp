// Files with metadata, in parts and as streams. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/file_store.h>

#include <sstream>

namespace {

void files(DataBaseClient& client, const std::string& database)
{
    section("files");
    //! [files]
    dbc::FileStore files(client, database);
    dbc::UploadOptions options;
    options.contentType = "text/plain";
    options.metadata = dbc::Value{{"author", "Ada"}};
    std::istringstream source("the first part, the second part");
    const dbc::FileInfo stored = files.upload("notes.txt", source, options);

    dbc::DownloadOptions part;
    part.offset = 16;
    files.download("notes.txt", std::cout, part);
    std::cout << '\n';

    for (const dbc::FileInfo& file : files.list({{"metadata.author", "Ada"}}))
        std::cout << file.name << ", " << file.length << " bytes, " << file.contentType << '\n';
    files.removeById(stored.id);
    //! [files]
}

void reader(DataBaseClient& client, const std::string& database)
{
    section("reader");
    dbc::FileStore files(client, database);
    std::istringstream source("header:content");
    files.upload("data", source);
    //! [reader]
    const std::unique_ptr<dbc::FileReader> file = files.open("data");
    file->seekg(7);
    std::string content;
    std::getline(*file, content);
    std::cout << content << " of " << file->info().length << " bytes\n";
    //! [reader]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    files(client, scratch.name());
    reader(client, scratch.name());
}
