// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "operation.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A class of the library beside its model, as a System.
/// @param steps    table of operations, each with its name
/// @param take     does one operation on both sides
/// @param compare  notes in the state's comparison where the sides differ
template <typename State, typename Step>
System systemOf(std::string name, std::size_t subjects, const std::vector<Step>& steps,
                void (*take)(State&, const Operation&), void (*compare)(State&))
{
    const auto run = [take, compare](const std::vector<Operation>& sequence) -> std::optional<Difference> {
        State state;
        for (std::size_t i = 0; i < sequence.size(); ++i)
        {
            take(state, sequence[i]);
            compare(state);
            if (state.comparison.differs())
                return Difference{i, state.comparison.text()};
        }
        return std::nullopt;
    };
    System system{std::move(name), {}, subjects, run};
    for (const Step& step : steps)
        system.operations.push_back(step.name);
    return system;
}
