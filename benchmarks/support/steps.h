// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "object_properties.h"

#include <bson/bson.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

/// One call that builds a document: a value, or the begin or end of a nested document or array.
struct Step
{
    enum class Kind
    {
        Int32,
        Int64,
        Double,
        Bool,
        Text,
        Binary,
        BeginGroup,
        BeginArray,
        EndGroup,
        EndArray
    };

    Kind kind;
    std::string key;
    std::int64_t integer = 0;
    double number = 0;
    std::string text;
    std::vector<unsigned char> bytes;
};

std::vector<Step> stepsOf(const std::vector<std::uint8_t>& bson);

/// Executes the steps with the append functions of libbson. @p bson must be initialised.
void build(const std::vector<Step>& steps, bson_t* bson);
/// Executes the steps with the setters of the document, from its cursor.
void build(const std::vector<Step>& steps, ObjectProperties& document);
/// Executes the steps with operator[] and push_back() of nlohmann/json.
void build(const std::vector<Step>& steps, nlohmann::json& json);
