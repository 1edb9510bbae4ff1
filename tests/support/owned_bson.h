// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_handles.h"

namespace test_support {

using ::OwnedBson;

} // namespace test_support
