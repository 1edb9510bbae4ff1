// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A client of the program's own comes first and goes first; the shared one is left connected.

#include "database_client.h"
#include "driver_calls.h"
#include "factories.h"
#include "server.h"

#include <memory>

int main()
{
    driver_calls::expect(1, 2);
    {
        const std::unique_ptr<DataBaseClient> own(createDataBaseClient());
        own->connect(serverUri());
        DataBaseClient::instance()->connect(serverUri());
    }
    return driver_calls::liveClients() == 1 ? 0 : 1;
}
