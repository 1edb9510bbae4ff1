// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A tour of the library on real data: reads the ISO 3166 records of countries
// and their subdivisions and takes them through everything that the library
// does. Start reading at load.cpp; each chapter is one function in one file.
#include "driver.h"
#include "tour.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <iterator>

namespace {

using tour::Tour;

struct Chapter
{
    const char* name;
    const char* what;
    void (*run)(Tour&);
    bool needsServer;
};

constexpr Chapter chapters[] = {
    {"load", "ISO country and subdivision records become typed documents",
     tour::load, false},
    {"write", "insert thousands of documents", tour::write, true},
    {"import", "many documents in a command, beside one command for each",
     tour::importRecords, true},
    {"find", "query, projection, order, limit and skip", tour::find, true},
    {"filter", "queries built call by call, and the JSON they make",
     tour::filter, true},
    {"update", "operators, every match at once, upsert", tour::update, true},
    {"aggregate", "group, sort and count on the server", tour::aggregate,
     true},
    {"compare", "read everything back and compare every value", tour::compare,
     true},
    {"remove", "delete what matches a query", tour::remove, true},
    {"files", "store, list, read back and remove files of this system",
     tour::files, true},
    {"users", "add, use, change and remove a user (needs --auth-uri)",
     tour::users, false},
};

std::vector<std::string> names()
{
    std::vector<std::string> all;
    std::transform(std::begin(chapters), std::end(chapters),
                   std::back_inserter(all),
                   [](const Chapter& c) { return c.name; });
    return all;
}

const Chapter& chapter(const std::string& name)
{
    return *std::find_if(std::begin(chapters), std::end(chapters),
                         [&](const Chapter& c) { return name == c.name; });
}

void list()
{
    for (const Chapter& c : chapters)
    {
        std::cout << c.name
                  << std::string(12 - std::string(c.name).size(), ' ')
                  << c.what << '\n';
    }
}

void run(Tour& tour, const std::vector<std::string>& wanted)
{
    tour.client = std::make_unique<DataBaseClient>();
    tour.batch = tour.client->createId();
    tour.database = "database_client_tour_" + tour.batch;
    std::unique_ptr<tour::OwnDatabase> database;
    if (std::any_of(wanted.begin(), wanted.end(),
                    [](const std::string& name) {
                        return chapter(name).needsServer;
                    }))
    {
        tour::connect(*tour.client, tour.options.uri, tour.database);
        database = std::make_unique<tour::OwnDatabase>(tour.options.uri,
                                                       tour.database);
    }
    for (const std::string& name : wanted)
        chapter(name).run(tour);
    if (database)
    {
        database->drop();
        std::cout << "\ndropped the database of the tour, " << tour.database
                  << std::endl;
    }
}

// All of them, but the users only when there is a server to have them on.
void runAll(Tour& tour)
{
    std::vector<std::string> wanted = names();
    const bool withUsers = !tour.options.authUri.empty();
    if (!withUsers)
        wanted.pop_back();
    run(tour, wanted);
    if (!withUsers)
    {
        std::cout << "left out chapter users: it needs --auth-uri, an "
                     "administrator on a server\n"
                     "with authentication\n";
    }
}

} // namespace

void tour::title(const std::string& name)
{
    const Chapter& titled = chapter(name);
    std::cout << '\n'
              << &titled - std::begin(chapters) + 1 << " of "
              << std::size(chapters) << ", " << name << ": " << titled.what
              << std::endl;
}

int main(int argc, char** argv)
try
{
    CLI::App app(
        "A tour of the library on real data. Without CHAPTER: all of them.");
    tour::Options options;
    options.uri = "mongodb://127.0.0.1:27017/?serverSelectionTimeoutMS=3000";
    options.data = "/usr/share/iso-codes/json";
    bool onlyList = false;
    std::vector<std::string> wanted;
    app.add_option(
           "--uri", options.uri,
           "the server; a database is made there and dropped at the end")
        ->capture_default_str();
    app.add_option("--auth-uri", options.authUri,
                   "an administrator on a server with authentication, for "
                   "chapter users");
    app.add_option("--data", options.data,
                   "folder of iso_3166-1.json and iso_3166-2.json")
        ->capture_default_str();
    app.add_flag("--list", onlyList, "name the chapters and end");
    app.add_option("CHAPTER", wanted, "chapters to run")
        ->check(CLI::IsMember(names()));
    CLI11_PARSE(app, argc, argv);
    if (onlyList)
    {
        list();
        return 0;
    }
    const bool usersWanted =
        std::count(wanted.begin(), wanted.end(), "users") != 0;
    if (usersWanted && options.authUri.empty())
    {
        std::cerr << "tour: chapter users needs --auth-uri, an administrator "
                     "on a server with authentication\n";
        return 2;
    }
    tour::endOnInterrupt();
    tour::quietDriverLog();
    tour::secondsSinceStart(); // the clock starts here
    Tour tour;
    tour.options = options;
    wanted.empty() ? runAll(tour) : run(tour, wanted);
    tour::summary();
}
catch (const tour::Interrupted&)
{
    std::cerr << "tour: interrupted\n";
    return 130; // as the shell has it for a program that Ctrl-C ended
}
catch (const std::exception& problem)
{
    std::cerr << "tour: " << problem.what() << '\n';
    return 1;
}
