// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/steps.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A typical document of programs, as BSON. It has only types that every peer supports.
struct Shape
{
    std::string name;
    std::vector<std::uint8_t> bytes;          ///< Fields in the order in which a program would write them.
    std::vector<std::uint8_t> canonicalBytes; ///< The same document as the library writes it: fields in key order.
    std::vector<Step> steps;                  ///< What is in `bytes`, field by field.
    std::vector<Step> canonicalSteps;         ///< What is in `canonicalBytes`, field by field.
    std::size_t fields = 0;                   ///< Number of values, groups and arrays.
};

const Shape& flatRecord();          ///< 12 values.
const Shape& nestedOrder();         ///< 60 values in 3 levels.
const Shape& wideSorted();          ///< 1,000 values, keys in order.
const Shape& wideShuffled();        ///< The same in random order.
const Shape& arrayOfNumbers();      ///< 10,000 doubles.
const Shape& arrayOfDocuments();    ///< 1,000 documents of 3 values.
const Shape& deepDocument();        ///< 100 levels with one value each.
const Shape& longTexts();           ///< 100 texts of 1 KiB.
const Shape& largeBinary();         ///< 1 MiB of bytes.
Shape flatShape(std::size_t size);  ///< @p size values, keys in order.
Shape arrayShape(std::size_t size); ///< An array "values" of @p size integers.

/// The nine shapes above.
const std::vector<const Shape*>& allShapes();
