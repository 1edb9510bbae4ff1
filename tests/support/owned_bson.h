#pragma once

#include "bson_handles.h"

namespace test_support {

using ::OwnedBson;

} // namespace test_support
