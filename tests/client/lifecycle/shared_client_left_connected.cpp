// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The shared client is the first one made, and nobody disconnects it.

#include "database_client.h"
#include "dbc/results.h"
#include "driver_calls.h"
#include "server.h"

int main()
{
    driver_calls::expect(1, 1);
    DataBaseClient& client = *DataBaseClient::instance();
    client.connect(serverUri());
    dbc::Results results;
    client.read("lifecycle", "missing", ObjectProperties(), results);
    return client.isConnected() ? 0 : 1;
}
