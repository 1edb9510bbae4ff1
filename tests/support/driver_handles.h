#pragma once

#include "mongoc_handles.h"

namespace test_support {

using DriverUri = UriHandle;
using DriverClient = ClientHandle;
using DriverDatabase = DatabaseHandle;
using DriverCollection = CollectionHandle;
using DriverCursor = CursorHandle;
using DriverText = BsonText;
using DriverTexts = std::unique_ptr<char*, DestroyWith<bson_strfreev>>;

} // namespace test_support
