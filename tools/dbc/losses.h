// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/document_ref.h"
#include "dbc/loss_guard.h"
#include "failure.h"
#include "texts.h"

#include <cstdint>
#include <map>
#include <ostream>
#include <string>

/// What to do if ObjectProperties drops or changes fields of a document.
enum class LossPolicy
{
    Ignore,
    Count, ///< Print the number of fields per loss at the end.
    Refuse ///< Stop at the first loss.
};

/// Finds and counts the losses of documents.
class LossCounter
{
public:
    explicit LossCounter(LossPolicy policy) : m_policy(policy) {}

    void look(const dbc::BsonView& document, std::uint64_t documentNumber)
    {
        if (m_policy == LossPolicy::Ignore)
            return;
        bson_t bson;
        if (!bson_init_static(&bson, document.data, document.size))
            throw Failure(ServerRefused, "document " + std::to_string(documentNumber) + " is not BSON");
        const auto losses = dbc::findLosses(bson);
        m_documents += losses.empty() ? 0U : 1U;
        for (const dbc::LossAt& loss : losses)
        {
            if (m_policy == LossPolicy::Refuse)
            {
                throw Failure(ServerRefused, "document " + std::to_string(documentNumber) + ", " + loss.path + ": " +
                                                 nameOf(loss.loss));
            }
            ++m_fields[loss.loss];
        }
    }

    bool foundAny() const noexcept { return m_documents > 0; }

    void print(std::ostream& stream) const
    {
        for (const auto& [loss, fields] : m_fields)
            stream << fields << "  " << nameOf(loss) << '\n';
        if (m_documents > 0)
            stream << "in " << counted(m_documents, "document") << '\n';
    }

private:
    const LossPolicy m_policy;
    std::uint64_t m_documents = 0;
    std::map<dbc::Loss, std::uint64_t> m_fields;
};
