// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Documents, updates and pipelines as nested braces. Needs no server.
#include "example.h"

#include <dbc/build.h>

#include <exception>
#include <utility>
#include <vector>

namespace {

void braces()
{
    section("braces");
    //! [braces]
    const ObjectProperties order =
        dbc::document({{"buyer", {{"name", "Ada"}}}, {"items", dbc::array({{{"sku", "A-1"}, {"count", 2}}})}});
    const ObjectProperties change =
        dbc::updateDocument({{"$set", {{"state", "sent"}}}, {"$inc", {{"version", 1}}}}); // for UpdateCommandReplace
    std::cout << text(order) << '\n' << text(change) << '\n';
    //! [braces]
}

void stages()
{
    section("stages");
    //! [stages]
    std::vector<dbc::Value> stages;
    for (int count = 11; count > 0; --count)
        stages.push_back(dbc::object({{"$limit", count}}));
    const ObjectProperties pipeline = dbc::pipeline(std::move(stages)); // for DataBaseClient::aggregate
    std::cout << text(pipeline) << '\n';
    //! [stages]
}

} // namespace

int main()
try
{
    braces();
    stages();
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
