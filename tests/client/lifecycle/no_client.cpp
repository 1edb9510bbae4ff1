// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A program that keeps documents and never makes a client does not start the driver.

#include "database_client.h"
#include "driver_calls.h"
#include "factories.h"
#include "object_properties.h"
#include "properties_to_json.h"

#include <memory>
#include <string>

int main()
{
    driver_calls::expect(0, 0);
    const std::unique_ptr<ObjectProperties> document(createObjectProperties());
    document->setValueInt32("a", 1);
    std::string json;
    std::string database;
    std::string collection;
    parseOldCollectionName(DataBaseClient::uri("h", 1, "", "", "d"), database, collection);
    return PropertiesToJson::convert(*document, json) && driver_calls::starts() == 0 ? 0 : 1;
}
