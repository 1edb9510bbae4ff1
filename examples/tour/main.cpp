// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A tour of the library with real data: the ISO 3166 records of countries and
// their subdivisions. Each chapter is one function in one file. Start reading
// at load.cpp.
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
    {"import", "many documents in one command, and one by one",
     tour::importRecords, true},
    {"find", "query, projection, order, limit and skip", tour::find, true},
    {"filter", "queries built call by call, printed as JSON", tour::filter,
     true},
    {"update", "update operators, all matches, upsert", tour::update, true},
    {"aggregate", "group, sort and count on the server", tour::aggregate,
     true},
    {"compare", "read everything back and compare every value", tour::compare,
     true},
    {"remove", "remove the documents that match a query", tour::remove, true},
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

// Runs all chapters; the chapter "users" only if --auth-uri is given.
void runAll(Tour& tour)
{
    std::vector<std::string> wanted = names();
    const bool withUsers = !tour.options.authUri.empty();
    if (!withUsers)
        wanted.pop_back();
    run(tour, wanted);
    if (!withUsers)
    {
        std::cout << "left out the chapter users: it needs --auth-uri, the "
                     "connection string of an\n"
                     "administrator on a server with authentication\n";
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
    CLI::App app("A tour of the library on real data. Without CHAPTER, runs "
                 "all chapters.");
    tour::Options options;
    options.uri = "mongodb://127.0.0.1:27017/?serverSelectionTimeoutMS=3000";
    options.data = "/usr/share/iso-codes/json";
    bool onlyList = false;
    std::vector<std::string> wanted;
    app.add_option("--uri", options.uri,
                   "connection string of the server; the tour creates a "
                   "database there and drops it at the end")
        ->capture_default_str();
    app.add_option("--auth-uri", options.authUri,
                   "connection string of an administrator on a server with "
                   "authentication; for the chapter users");
    app.add_option("--data", options.data,
                   "folder with iso_3166-1.json and iso_3166-2.json")
        ->capture_default_str();
    app.add_flag("--list", onlyList, "print the names of the chapters");
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
    tour::secondsSinceStart(); // starts the clock
    Tour tour;
    tour.options = options;
    wanted.empty() ? runAll(tour) : run(tour, wanted);
    tour::summary();
}
catch (const tour::Interrupted&)
{
    std::cerr << "tour: interrupted\n";
    return 130; // as a shell reports a program that Ctrl-C ended
}
catch (const std::exception& problem)
{
    std::cerr << "tour: " << problem.what() << '\n';
    return 1;
}
