// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "database_client.h"
#include "dbc/database.h"
#include "dbc/errors.h"
#include "dbc/value.h"
#include "failure.h"
#include "texts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct ListCommand
{
    std::string database;
};

struct Line
{
    std::string name;
    std::string documents; // empty for a database
    std::string size;
};

void print(std::vector<Line> lines)
{
    std::sort(lines.begin(), lines.end(), [](const Line& left, const Line& right) { return left.name < right.name; });
    std::size_t width = 0;
    for (const Line& line : lines)
        width = std::max(width, line.name.size());
    for (const Line& line : lines)
    {
        std::cout << std::left << std::setw(static_cast<int>(width)) << line.name << std::right;
        if (!line.documents.empty())
            std::cout << "  " << std::setw(10) << line.documents;
        std::cout << "  " << std::setw(10) << line.size << '\n';
    }
}

std::vector<Line> databases(DataBaseClient& client)
{
    const dbc::Value reply = dbc::Database(client, "admin").command({{"listDatabases", 1}});
    std::vector<Line> lines;
    for (const dbc::Value& database : reply.at("databases").elements())
        lines.push_back({database.getOr("name", ""), "", sizeText(database.getOr("sizeOnDisk", 0.0))});
    return lines;
}

// A view stores no documents, so its line has no numbers.
Line collectionLine(dbc::Database& database, const std::string& name)
{
    try
    {
        const dbc::Value numbers = database.command({{"collStats", name}});
        return {name, std::to_string(numbers.getOr("count", std::int64_t{0})), sizeText(numbers.getOr("size", 0.0))};
    }
    catch (const dbc::ServerError& error)
    {
        constexpr int notSupportedOnView = 166;
        if (error.code() != notSupportedOnView)
            throw;
        return {name, "view", ""};
    }
}

std::vector<Line> collections(dbc::Database database)
{
    std::vector<Line> lines;
    for (const std::string& name : database.collectionNames())
        lines.push_back(collectionLine(database, name));
    return lines;
}

int list(const GlobalOptions& global, const ListCommand& command)
{
    const auto client = connect(global.connection);
    const auto lines =
        command.database.empty() ? databases(*client) : collections(dbc::Database(*client, command.database));
    print(lines);
    return lines.empty() ? NothingFound : Success;
}

} // namespace

void addListCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<ListCommand>();
    CLI::App* app = program.add_subcommand("ls", "List the databases, or the collections of one");
    app->add_option("database", command->database,
                    "Database whose collections are listed, with number and size of documents; default: the "
                    "databases, with size on disk");
    setWork(*app, global, work, command, &list);
}
