// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model_tree.h"
#include "property.h"

#include <list>
#include <sstream>
#include <string>

/// Collects the first difference between what the library and the model say.
class Comparison
{
public:
    bool differs() const { return !m_text.empty(); }
    const std::string& text() const { return m_text; }

    template <typename Left, typename Right>
    void same(const std::string& what, const Left& library, const Right& model)
    {
        if (differs() || library == model)
            return;
        std::ostringstream text;
        text << what << ": library " << show(library) << ", model " << show(model);
        m_text = text.str();
    }

    /// The whole subtree: keys, kinds, values, order, parents.
    void sameTree(const std::string& where, Property& library, const model::Node& model);

private:
    static std::string show(const std::string& text) { return '"' + text + '"'; }
    static std::string show(const model::Value& value) { return model::describe(value); }
    static std::string show(const std::list<std::string>& texts);
    template <typename Number>
    static std::string show(const Number& number)
    {
        return std::to_string(number);
    }

    std::string m_text;
};
