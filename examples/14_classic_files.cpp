// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Stores a file, lists the store, reads the file back and removes it.
#include "example.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

void printNames(DataBaseClient& client, const std::string& database)
{
    std::list<std::string> names;
    client.listFiles(database, "letters", names);
    std::cout << names.size() << " stored:";
    for (const std::string& name : names)
        std::cout << ' ' << name;
    std::cout << '\n';
}

// A local file that is removed at the end.
struct LocalFile
{
    LocalFile() { std::ofstream(path) << "Dear reader,\nthis is a file.\n"; }
    LocalFile(const LocalFile&) = delete;
    LocalFile& operator=(const LocalFile&) = delete;
    ~LocalFile() { std::remove(path.c_str()); }

    const std::string path = "letter_of_example_14.txt";
};

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    const std::string database = databaseOf(client);

    const LocalFile letter;
    client.writeFile(database, "letters", "letter.txt", letter.path);
    client.writeFile(database, "letters", "copy.txt", letter.path);
    printNames(client, database);

    std::stringstream content; // or any other std::iostream
    client.readFile(database, "letters", "letter.txt", &content);
    std::cout << content.str();

    client.removeFile(database, "letters", "LETTER.TXT"); // removes every file of this name; ignores case
    client.removeFile(database, "letters", "copy.txt");
    printNames(client, database);
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
