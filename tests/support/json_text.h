// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver_texts.h"
#include "object_properties.h"
#include "properties_to_json.h"

#include <gtest/gtest.h>

#include <string>

namespace test_support {

/// Returns the JSON of PropertiesToJson, in the same form for every version of the driver.
inline std::string jsonOf(const ObjectProperties& document)
{
    std::string json = "what was there before";
    EXPECT_TRUE(PropertiesToJson::convert(document, json));
    return inWordsOf123(json);
}

} // namespace test_support
