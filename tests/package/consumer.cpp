// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Uses something of every public header, as a program outside this repository would.
#include <bson_to_properties.h>
#include <database_client.h>
#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/connection_string.h>
#include <dbc/errors.h>
#include <dbc/files.h>
#include <dbc/filter.h>
#include <dbc/loss_guard.h>
#include <dbc/pool.h>
#include <dbc/results.h>
#include <dbc/scopes.h>
#include <dbc/values.h>
#include <factories.h>
#include <json_to_properties.h>
#include <object_filter.h>
#include <object_properties.h>
#include <properties_to_bson.h>
#include <properties_to_json.h>
#include <property.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

int failures = 0;

void expect(bool held, const char* what)
{
    if (held)
        return;
    std::cerr << "not so: " << what << '\n';
    ++failures;
}

void convertADocument()
{
    const std::unique_ptr<ObjectProperties> document(createObjectProperties());
    document->setValueString("name", "Ada");
    document->setValueInt32("born/year", 1815);

    std::string json;
    expect(PropertiesToJson::convert(*document, json), "a document becomes JSON text");
    expect(json == R"({ "born" : { "year" : 1815 }, "name" : "Ada" })", "the text is that of the document");

    bson_t bson;
    expect(PropertiesToBson::convert(*document, &bson), "a document becomes BSON");
    ObjectProperties copy;
    expect(BsonToProperties::convert(&bson, &copy), "BSON becomes a document");
    bson_destroy(&bson);
    expect(copy.type("born/year") == Int32, "the kind of a value survives");
    expect(JsonToProperties::convert(R"({"more": 1.5})", &copy), "JSON text becomes a document");
    expect(copy.root()->childCount() == 3, "which is added to what is there");
}

void buildAQuery()
{
    const std::unique_ptr<ObjectFilter> filter(createObjectFilter());
    filter->setFilterInt(OperationTypeGreater, "age", 17);
    std::string json;
    expect(PropertiesToJson::convert(filter->toObjectProeprties(), json), "a filter is a document");
    expect(json == R"({ "age" : { "$gt" : 17 } })", "which is the query");
}

void haveAClient()
{
    const std::unique_ptr<DataBaseClient> client(createDataBaseClient());
    expect(DataBaseClient::uri("db", 27017, "", "", "test") == "mongodb://db:27017/test", "a connection string");
    std::list<ObjectProperties*> results;
    try
    {
        client->read("test.people", ObjectProperties(), results);
        expect(false, "an unconnected client throws");
    }
    catch (const std::invalid_argument& error)
    {
        expect(error.what() == std::string("Connection is not established. Run connect before"), "the text");
    }
}

} // namespace

int main()
{
    convertADocument();
    buildAQuery();
    haveAClient();
    return failures;
}
