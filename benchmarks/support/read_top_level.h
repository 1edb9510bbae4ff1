// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/measure.h"
#include "support/shapes.h"

#include <cstddef>
#include <vector>

/// The values of the first level of the document, in the order in which they were written.
inline std::vector<Step> topLevelOf(const Shape& shape)
{
    std::vector<Step> steps;
    int depth = 0;
    for (const Step& step : shape.steps)
    {
        const bool begins = step.kind == Step::Kind::BeginGroup || step.kind == Step::Kind::BeginArray;
        const bool ends = step.kind == Step::Kind::EndGroup || step.kind == Step::Kind::EndArray;
        if (depth == 0 && !begins && !ends)
            steps.push_back(step);
        depth += begins ? 1 : ends ? -1 : 0;
    }
    return steps;
}

/// Reads every value of the first level by its key. @p numberOf returns an integer for each: the value of an integer, 1
/// for a double above 0 and 0 for any other, or the size of a string.
template <typename Object, typename NumberOf>
void readTopLevel(benchmark::State& state, const Shape& shape, const Object& object, NumberOf numberOf)
{
    struct Read
    {
        std::size_t sum = 0;
    };
    const std::vector<Step> wanted = topLevelOf(shape);
    std::size_t expected = 0;
    for (const Step& step : wanted)
    {
        expected += step.kind == Step::Kind::Double ? (step.number > 0 ? 1 : 0)
                    : step.kind == Step::Kind::Text ? step.text.size()
                                                    : static_cast<std::size_t>(step.integer);
    }
    measure<Read>(
        state, wanted.size(), 32 * wanted.size(), [](Read&) {},
        [&](Read& read) {
            for (const Step& step : wanted)
                read.sum += numberOf(object, step);
        },
        [&](const Read& read) { return read.sum == expected; });
}
