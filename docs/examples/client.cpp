// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A client and its result lists. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>
#include <dbc/build.h>
#include <dbc/results.h>
#include <factories.h>

#include <exception>
#include <list>
#include <memory>
#include <stdexcept>

namespace {

void life(const std::string& address, const std::string& database)
{
    section("life");
    //! [life]
    DataBaseClient client;
    client.connect(address); // "mongodb://localhost:27017/"

    ObjectProperties person;
    person.setValueString("name", "Ada");
    std::string id;
    client.write(database, "people", person, id);
    std::cout << id.size() << " hexadecimal digits\n";

    client.disconnect(); // the destructor does this too
    std::cout << client.isConnected() << '\n';
    //! [life]
}

void factory(const std::string& address, const std::string& database)
{
    section("factory");
    //! [factory]
    const std::unique_ptr<DataBaseClient> client(createDataBaseClient()); // created with new: the caller deletes it
    client->connect(address);
    client->remove(database, "people", ObjectProperties());
    //! [factory]
    std::cout << client->isConnected() << '\n';
}

void shared(const std::string& address)
{
    section("shared");
    //! [shared]
    DataBaseClient::instance()->connect(address);                   // once, before other threads use the library
    std::cout << DataBaseClient::instance()->isConnected() << '\n'; // the same client everywhere; never delete it
    //! [shared]
    DataBaseClient::instance()->disconnect();
}

//! [owner]
// Deletes the documents that the client appended, also after an exception.
struct DeleteResults
{
    void operator()(std::list<ObjectProperties*>* results) const
    {
        for (const ObjectProperties* const document : *results)
            delete document;
        delete results;
    }
};
using Results = std::unique_ptr<std::list<ObjectProperties*>, DeleteResults>;
//! [owner]

void results(DataBaseClient& client, const std::string& database)
{
    section("results");
    for (const char* const name : {"Ada", "Bob"})
        client.write(database, "people", dbc::document({{"name", name}}));
    //! [results]
    const Results found(new std::list<ObjectProperties*>);
    client.read(database, "people", ObjectProperties(), *found);
    for (const ObjectProperties* const person : *found)
        std::cout << person->valueAsString("name", "?") << '\n';
    //! [results]

    //! [helpers_results]
    dbc::Results people; // owns the documents, too
    client.read(database, "people", ObjectProperties(), people);
    for (const ObjectProperties& person : people)
        std::cout << person.valueAsString("name", "?") << '\n';
    //! [helpers_results]
}

void find(DataBaseClient& client, const std::string& database)
{
    section("find");
    //! [find]
    ObjectProperties query;
    query.beginGroup("$query"); // empty: every document
    query.endGroup();
    query.setValueInt32("$orderby/name", -1);

    ObjectProperties projection;
    projection.setValueInt32("name", 1);
    projection.setValueInt32("_id", 0);

    dbc::Results people;
    client.find(database, "people", query, projection, people, 1, 1); // at most one, after skipping one
    std::cout << text(people.front()) << '\n';
    //! [find]
}

void update(DataBaseClient& client, const std::string& database)
{
    section("update");
    //! [update]
    ObjectProperties query;
    query.setValueString("name", "Bob");
    ObjectProperties change;
    change.setValueInt32("age", 40);
    client.update(database, "people", query, change, UpdateFlagNone, UpdateCommandSet); // {"$set": {"age": 40}}

    // Several operators: the document contains them, and UpdateCommandReplace adds no other operator.
    const ObjectProperties both = dbc::updateDocument({{"$set", {{"age", 41}}}, {"$push", {{"tags", "older"}}}});
    client.update(database, "people", query, both, UpdateFlagMultiUpdate, UpdateCommandReplace);
    //! [update]
    dbc::Results people;
    client.read(database, "people", query, people);
    people.front().remove("_id");
    std::cout << text(people.front()) << '\n';
}

void aggregate(DataBaseClient& client, const std::string& database)
{
    section("aggregate");
    //! [aggregate]
    const ObjectProperties pipeline =
        dbc::pipeline({{{"$match", {{"age", 41}}}}, {{"$project", {{"_id", 0}, {"name", 1}}}}});
    dbc::Results people;
    client.aggregate(database, "people", pipeline, people);
    std::cout << text(people.front()) << '\n';
    //! [aggregate]
}

void failure(DataBaseClient& client)
{
    section("failure");
    //! [failure]
    try
    {
        dbc::Results people;
        client.read("shop", "", ObjectProperties(), people);
    }
    catch (const std::invalid_argument& error) // the call was wrong; nothing was sent
    {
        std::cout << error.what() << '\n';
    }
    catch (const std::runtime_error& error) // the driver or the server rejected the operation
    {
        std::cout << error.what() << '\n';
    }
    //! [failure]
}

} // namespace

int main()
try
{
    const std::string address = test_support::TestServer::instance().uri();
    const test_support::ScratchDatabase database;
    life(address, database.name());
    factory(address, database.name());
    shared(address);

    DataBaseClient client;
    client.connect(address);
    results(client, database.name());
    find(client, database.name());
    update(client, database.name());
    aggregate(client, database.name());
    failure(client);
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
