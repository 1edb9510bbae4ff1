// Documents, updates and pipelines as nested braces. Needs no server.
#include "example.h"

#include <companion/build.h>

#include <exception>
#include <utility>
#include <vector>

namespace {

void braces()
{
    section("braces");
    //! [braces]
    using companion::array;
    using companion::object;

    const ObjectProperties order = companion::document(
        {{"buyer", object({{"name", "Ada"}})}, {"items", array({object({{"sku", "A-1"}, {"count", 2}})})}});
    const ObjectProperties change = companion::update(
        {{"$set", object({{"state", "sent"}})}, {"$inc", object({{"version", 1}})}}); // for UpdateCommandReplace
    std::cout << text(order) << '\n' << text(change) << '\n';
    //! [braces]
}

void stages()
{
    section("stages");
    //! [stages]
    std::vector<companion::Value> stages;
    for (int count = 11; count > 0; --count)
        stages.push_back(companion::object({{"$limit", count}}));
    const ObjectProperties pipeline = companion::pipeline(std::move(stages)); // for DataBaseClient::aggregate
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
