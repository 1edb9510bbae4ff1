// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Clients of the program's own, deleted before it ends.

#include "database_client.h"
#include "dbc/results.h"
#include "driver_calls.h"
#include "factories.h"
#include "server.h"

#include <memory>

int main()
{
    driver_calls::expect(1, 3);
    for (int round = 0; round < 3; ++round)
    {
        const std::unique_ptr<DataBaseClient> client(createDataBaseClient());
        client->connect(serverUri());
        dbc::Results results;
        client->read("lifecycle", "missing", ObjectProperties(), results);
    }
    return driver_calls::liveClients() == 0 ? 0 : 1;
}
