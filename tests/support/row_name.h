// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

/// Names the rows of a table of tests by their field `name`.
struct RowName
{
    template <typename Info>
    std::string operator()(const Info& info) const
    {
        return info.param.name;
    }
};
