#pragma once

#include <bson/bson.h>

/// What a reply answers.
struct ReplyContext
{
    bool listsIndexes = false; ///< `listIndexes`
    bool usesScram = true;     ///< on a connection that authenticates by SCRAM, if it does: RFC 5802
};

/// Whether a well-formed reply is free of what the driver ends the process over. It takes some values to be of their
/// kind without a look, and asserts what it expects of some others. Fields that the driver does not read may be
/// anything, and so may those whose kind it looks at.
bool isHarmless(const bson_t& reply, const ReplyContext& context) noexcept;
