// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/value.h"
#include "document_walk.h"
#include "failure.h"
#include "losses.h"
#include "progress.h"
#include "query_words.h"
#include "texts.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct CheckCommand
{
    std::string collection;
    std::vector<std::string> query;
};

int check(const GlobalOptions& global, const CheckCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, command.collection);
    LossCounter losses(LossPolicy::Count);
    std::uint64_t done = 0;
    {
        const bool isShown = Progress::isShown(global.connection.quiet);
        Progress progress("checking", isShown ? documentCount(collection, query) : 0, global.connection.quiet);
        forEachDocument([&] { return collection.find(query); },
                        [&](dbc::Cursor& cursor) {
                            losses.look(cursor.bson(), ++done);
                            progress.show(done);
                        });
    }
    losses.print(std::cout);
    if (!losses.foundAny() && !global.connection.quiet)
        std::cout << counted(done, "document") << " without losses\n";
    return losses.foundAny() ? ServerRefused : Success;
}

} // namespace

void addCheckCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<CheckCommand>();
    CLI::App* app = program.add_subcommand("check", "Report the fields that ObjectProperties would drop or change");
    app->add_option("collection", command->collection, collectionHelp)->required();
    app->add_option("query", command->query, queryHelp);
    setWork(*app, global, work, command, &check);
}
