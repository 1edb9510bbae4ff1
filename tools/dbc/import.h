#pragma once

#include "commands.h"
#include "losses.h"

#include <cstdint>
#include <string>

/// How documents stand in a file.
enum class FileFormat
{
    Json,
    Csv,
    Tsv
};

/// The format that the end of a name stands for: ".csv", ".tsv"; JSON for any other.
FileFormat formatOf(const std::string& path);

struct ImportCommand
{
    std::string collection;
    std::string file; // empty for standard input
    std::optional<FileFormat> format;
    std::string header;
    std::string upsert; // fields with commas between
    std::string resume;
    std::string state;
    std::uint64_t batch = 1000;
    bool skipDuplicates = false;
    bool showsProgress = false;
    LossPolicy losses = LossPolicy::Count;
};

/// Reads the documents of a file and writes them to a collection, batch by batch.
/// @throws Failure that says how to go on after an error
int importDocuments(const GlobalOptions& global, const ImportCommand& command);
