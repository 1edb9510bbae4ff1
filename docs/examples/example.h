// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <object_properties.h>
#include <properties_to_json.h>

#include <iostream>
#include <string>

/// Begins a part of an example's output.
inline void section(const std::string& name)
{
    std::cout << "== " << name << '\n';
}

//! [text]
inline std::string text(const ObjectProperties& document)
{
    std::string json;
    PropertiesToJson::convert(document, json);
    return json;
}
//! [text]
