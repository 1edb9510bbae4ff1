// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"
#include "connection.h"
#include "database_client.h"
#include "dbc/cursor.h"
#include "dbc/value.h"
#include "document_walk.h"
#include "failure.h"
#include "import.h"
#include "losses.h"
#include "output.h"
#include "progress.h"
#include "query_words.h"
#include "replaced_file.h"
#include "table.h"

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

const std::map<std::string, LossPolicy> policies{
    {"ignore", LossPolicy::Ignore}, {"count", LossPolicy::Count}, {"refuse", LossPolicy::Refuse}};
const std::map<std::string, std::optional<FileFormat>> formats{
    {"json", FileFormat::Json}, {"csv", FileFormat::Csv}, {"tsv", FileFormat::Tsv}};

struct ExportCommand
{
    std::string collection;
    std::vector<std::string> query;
    std::string file;
    std::optional<FileFormat> format;
    std::string columns;
    bool hasPlainHeader = false;
    bool showsProgress = false;
    LossPolicy losses = LossPolicy::Count;
};

class Export
{
public:
    Export(const GlobalOptions& global, const ExportCommand& command)
        : m_global(global), m_command(command), m_query(parseQuery(command.query, "; use -f for a file")),
          m_client(connect(global.connection)), m_collection(collectionOf(*m_client, command.collection)),
          m_losses(command.losses)
    {}

    std::uint64_t run()
    {
        const FileFormat format = m_command.format.value_or(formatOf(m_command.file));
        if (format == FileFormat::Json && (!m_command.columns.empty() || m_command.hasPlainHeader))
            throw Failure(UsageError, "--columns and --plain-header are only for CSV and TSV");
        std::optional<ReplacedFile> file;
        if (!m_command.file.empty())
            file.emplace(m_command.file);
        std::ostream& stream = file ? file->stream() : std::cout;
        const bool isShown = Progress::isShown(m_global.connection.quiet, m_command.showsProgress);
        m_total = isShown ? documentCount(m_collection, m_query) : 0;
        const std::uint64_t done = format == FileFormat::Json
                                       ? writeJson(stream, !file)
                                       : writeTable(stream, format == FileFormat::Csv ? ',' : '\t');
        if (file)
            file->commit();
        return done;
    }

    const LossCounter& losses() const noexcept { return m_losses; }

private:
    template <typename Visit>
    std::uint64_t visitAll(const char* what, const Visit& visit)
    {
        Progress progress(what, m_total, m_global.connection.quiet, Progress::Unit::Documents, m_command.showsProgress);
        std::uint64_t done = 0;
        return forEachDocument([&] { return m_collection.find(m_query); },
                               [&](dbc::Cursor& cursor) {
                                   visit(cursor, ++done);
                                   progress.show(done);
                               });
    }

    std::uint64_t writeJson(std::ostream& stream, bool isStandardOutput)
    {
        const OutputOptions& output = m_global.output;
        DocumentWriter writer(stream, output, Dialect::Canonical, isStandardOutput && output.colorsStandardOutput());
        const std::uint64_t done = visitAll("exporting", [&](dbc::Cursor& cursor, std::uint64_t number) {
            m_losses.look(cursor.bson(), number);
            writer.write(cursor.value());
        });
        writer.finish();
        return done;
    }

    // Reads all documents twice, unless the columns are given, because the header depends on all documents.
    std::uint64_t writeTable(std::ostream& stream, char separator)
    {
        TableWriter::Format format;
        format.separator = separator;
        format.hasTypes = !m_command.hasPlainHeader;
        format.isComplete = m_command.columns.empty();
        TableWriter writer(stream, columns(), format);
        const std::uint64_t done = visitAll("exporting", [&](dbc::Cursor& cursor, std::uint64_t number) {
            m_losses.look(cursor.bson(), number);
            writer.write(cursor.value(), number);
        });
        writer.finish();
        return done;
    }

    std::vector<Column> columns()
    {
        std::vector<Column> result;
        if (!m_command.columns.empty())
            result = parseHeader(m_command.columns);
        else
        {
            ColumnFinder finder;
            visitAll("looking for columns",
                     [&finder](dbc::Cursor& cursor, std::uint64_t number) { finder.look(cursor.value(), number); });
            result = finder.columns();
        }
        if (m_command.hasPlainHeader)
        {
            for (Column& column : result)
                column.type = ColumnType::Any;
        }
        return result;
    }

    const GlobalOptions& m_global;
    const ExportCommand& m_command;
    const dbc::Value m_query;
    std::unique_ptr<DataBaseClient> m_client;
    dbc::Collection m_collection;
    LossCounter m_losses;
    std::uint64_t m_total = 0;
};

int exportDocuments(const GlobalOptions& global, const ExportCommand& command)
{
    Export work(global, command);
    const std::uint64_t done = work.run();
    if (!global.connection.quiet)
    {
        std::cerr << "exported " << done << '\n';
        work.losses().print(std::cerr);
    }
    return done > 0 ? Success : NothingFound;
}

void addLossOption(CLI::App& app, LossPolicy& policy)
{
    addChoice(app, "--losses", policy, policies,
              "What to do with fields that ObjectProperties drops or changes; default: count");
}

void addFormatOption(CLI::App& app, std::optional<FileFormat>& format)
{
    addChoice(app, "--format", format, formats, "Format; default: by the extension of the file name, otherwise JSON");
}

void addExport(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<ExportCommand>();
    CLI::App* app = program.add_subcommand("export", "Write documents to a file or to standard output");
    app->add_option("collection", command->collection, collectionHelp)->required();
    app->add_option("query", command->query, queryHelp);
    app->add_option("--file,-f", command->file, "File to write, created when it is complete; default: standard output")
        ->type_name("FILE");
    addFormatOption(*app, command->format);
    app->add_option("--columns", command->columns,
                    "Fields of a CSV or TSV, with or without types: name,total:double,address.city; default: all "
                    "fields, found by reading the documents twice");
    app->add_flag("--plain-header", command->hasPlainHeader, "No types in the header of a CSV or TSV");
    app->add_flag("--progress", command->showsProgress, "Show progress also if standard error is not a terminal");
    addLossOption(*app, command->losses);
    app->callback([=, &global, &work] { work = [=, &global] { return exportDocuments(global, *command); }; });
}

void addImport(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<ImportCommand>();
    CLI::App* app = program.add_subcommand("import", "Insert documents from a file or from standard input");
    app->add_option("collection", command->collection, collectionHelp)->required();
    app->add_option("--file,-f", command->file,
                    "JSON, one document per line or one array; CSV or TSV; default: standard input")
        ->type_name("FILE");
    addFormatOption(*app, command->format);
    app->add_option("--header", command->header,
                    "Columns of a CSV or TSV without a header line: name,total:double,when:date");
    CLI::Option* upsert = app->add_option(
        "--upsert", command->upsert,
        "Fields, separated by commas: replace the document with the same values in these fields, or insert");
    app->add_option("--batch", command->batch, "Documents per request; default: 1000")->check(CLI::Range(1, 100000));
    app->add_flag("--skip-duplicates", command->skipDuplicates, "Skip documents with a duplicate key")
        ->excludes(upsert);
    app->add_option("--resume", command->resume, "Continue a stopped import: the value that it printed, such as 2000");
    app->add_option("--state", command->state,
                    "File that records the progress; the same command then continues the import, even after kill -9")
        ->type_name("FILE");
    app->add_flag("--progress", command->showsProgress, "Show progress also if standard error is not a terminal");
    addLossOption(*app, command->losses);
    app->callback([=, &global, &work] { work = [=, &global] { return importDocuments(global, *command); }; });
}

} // namespace

void addTransferCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    addExport(program, global, work);
    addImport(program, global, work);
}
