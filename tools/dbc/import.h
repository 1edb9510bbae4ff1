// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "commands.h"
#include "losses.h"

#include <cstdint>
#include <string>

enum class FileFormat
{
    Json,
    Csv,
    Tsv
};

/// Returns the format for a file name extension: ".csv", ".tsv"; JSON for any other.
FileFormat formatOf(const std::string& path);

struct ImportCommand
{
    std::string collection;
    std::string file; // empty for standard input
    std::optional<FileFormat> format;
    std::string header;
    std::string upsert; // fields separated by commas
    std::string resume;
    std::string state;
    std::uint64_t batch = 1000;
    bool skipDuplicates = false;
    bool showsProgress = false;
    LossPolicy losses = LossPolicy::Count;
};

/// Imports the documents of a file into a collection, in batches.
/// @throws Failure with a message that describes how to continue the import
int importDocuments(const GlobalOptions& global, const ImportCommand& command);
