// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver_texts.h"
#include "object_properties.h"
#include "properties_to_json.h"

#include <string>

namespace test_support {

/// A document as the library writes it to JSON, the same with every version of the driver.
inline std::string jsonOf(const ObjectProperties& document)
{
    std::string json;
    PropertiesToJson::convert(document, json);
    return inWordsOf123(json);
}

} // namespace test_support
