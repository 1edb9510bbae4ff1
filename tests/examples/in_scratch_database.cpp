// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// usage: in-scratch-database plain|auth CMD [ARG...]
//
// Runs CMD with one more argument, the address of a database of its own on the server of scripts/with-server, which is
// dropped with its users when CMD has ended. Ends with CMD's status.
#include "environment.h"
#include "mongoc_handles.h"
#include "test_server.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

// The address with another database in it. A user is known to the database that the address named before.
std::string withDatabase(const std::string& address, const std::string& database)
{
    const UriHandle uri(mongoc_uri_new(address.c_str()));
    if (!uri)
        throw std::runtime_error("not a connection string: " + address);
    const std::size_t host = address.find("://") + 3;
    const std::size_t path = address.find_first_of("/?", host);
    const std::size_t question = address.find('?', host);
    std::string options = question == std::string::npos ? "" : address.substr(question + 1);
    if (mongoc_uri_get_username(uri.get()) && options.find("authSource=") == std::string::npos)
        options += (options.empty() ? "" : "&") + std::string("authSource=") + mongoc_uri_get_auth_source(uri.get());
    return address.substr(0, path) + "/" + database + (options.empty() ? "" : "?" + options);
}

int run(char** command, std::string address)
{
    std::vector<char*> arguments;
    for (; *command; ++command)
        arguments.push_back(*command);
    arguments.push_back(address.data());
    arguments.push_back(nullptr);

    pid_t child = 0;
    const int problem = ::posix_spawn(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ);
    if (problem != 0)
        throw std::system_error(problem, std::generic_category(), arguments.front());
    int status = 0;
    while (::waitpid(child, &status, 0) == -1)
    {
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

int main(int argc, char** argv)
try
{
    if (argc < 3)
    {
        std::cerr << "usage: in-scratch-database plain|auth CMD [ARG...]\n";
        return 2;
    }
    const bool auth = std::strcmp(argv[1], "auth") == 0;
    const std::string address =
        test_support::requiredVariable(auth ? "DATABASE_CLIENT_TEST_AUTH_URI" : "DATABASE_CLIENT_TEST_URI");
    const test_support::ScratchDatabase database(address);
    return run(argv + 2, withDatabase(address, database.name()));
}
catch (const std::exception& problem)
{
    std::cerr << "in-scratch-database: " << problem.what() << '\n';
    return 1;
}
