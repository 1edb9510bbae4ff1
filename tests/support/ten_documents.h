// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "connected_client.h"

#include "dbc/collection.h"

#include <string>
#include <vector>

namespace test_support {

/// A collection "c" of ten documents {_id: 1, text: "t1"} and so on. The gateway has recorded no command yet.
class TenDocuments : public ConnectedClient
{
public:
    TenDocuments() : m_collection(client(), database(), "c")
    {
        std::vector<dbc::Value> documents;
        for (int id = 1; id <= 10; ++id)
            documents.push_back(dbc::Value{{"_id", id}, {"text", "t" + std::to_string(id)}});
        m_collection.insertMany(documents);
        gateway().clear();
    }
    ~TenDocuments() override { gateway().clearFaults(); }

    dbc::Collection& collection() { return m_collection; }

    dbc::Cursor openInBatchesOf(int count)
    {
        dbc::FindOptions options;
        options.sort = {{"_id"}};
        options.batchSize = count;
        return m_collection.find({}, options);
    }

private:
    dbc::Collection m_collection;
};

} // namespace test_support
