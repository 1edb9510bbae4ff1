// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "import.h"

#include "commands.h"
#include "connection.h"
#include "dbc/bulk.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/value.h"
#include "dbc/values.h"
#include "failure.h"
#include "input.h"
#include "interrupt.h"
#include "progress.h"
#include "scalar_text.h"
#include "table.h"
#include "texts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The progress of an import: the number of documents that are done, and the id of the run. Written as "28", or as
/// "28:RUN" if documents after the 28th may be stored too.
///
/// A document without an "_id" gets an id that consists of the run and the number of the document. If it is sent again,
/// the server reports a duplicate key instead of storing a second document.
struct Mark
{
    std::uint64_t done = 0;
    std::string run;

    static Mark parse(const std::string& text, const std::string& what)
    {
        Mark mark;
        const std::size_t colon = text.find(':');
        const std::string digits = text.substr(0, colon);
        if (colon != std::string::npos)
            mark.run = text.substr(colon + 1);
        const bool isNumber =
            !digits.empty() && digits.size() < 19 && digits.find_first_not_of("0123456789") == std::string::npos;
        if (!isNumber || (colon != std::string::npos && !isObjectIdText(mark.run)))
            throw Failure(UsageError, what + " is not the value that an import prints when it stops: " + text);
        mark.done = std::stoull(digits);
        return mark;
    }

    std::string text() const { return std::to_string(done) + (run.empty() ? "" : ":" + run); }
};

/// The file that stores the progress while the import runs.
class StateFile
{
public:
    explicit StateFile(std::string path) : m_path(std::move(path)) {}

    bool isUsed() const noexcept { return !m_path.empty(); }

    std::optional<Mark> read() const
    {
        std::ifstream file(m_path);
        std::string text;
        if (m_path.empty() || !(file >> text))
            return std::nullopt;
        return Mark::parse(text, m_path);
    }

    // Writes another file and renames it, so that after an interruption the file has either the old or the new state.
    void save(const Mark& mark) const
    {
        if (m_path.empty())
            return;
        const std::string next = m_path + ".next";
        std::ofstream file(next);
        if (!(file << mark.text() << '\n').flush() || std::rename(next.c_str(), m_path.c_str()) != 0)
            throw Failure(UsageError, "cannot write " + m_path);
    }

    void remove() const
    {
        if (!m_path.empty())
            std::remove(m_path.c_str());
    }

private:
    const std::string m_path;
};

std::vector<std::string> splitFields(const std::string& text)
{
    std::vector<std::string> fields;
    for (std::size_t begin = 0; begin < text.size() + (text.empty() ? 0 : 1);)
    {
        const std::size_t comma = std::min(text.find(',', begin), text.size());
        fields.push_back(text.substr(begin, comma - begin));
        if (fields.back().empty())
            throw Failure(UsageError, "--upsert: a field is missing; write name,city");
        begin = comma + 1;
    }
    return fields;
}

// Returns the field at a dotted path.
const dbc::Value* findField(const dbc::Value& document, const std::string& path)
{
    const dbc::Value* value = &document;
    for (std::size_t begin = 0; value && begin <= path.size();)
    {
        const std::size_t dot = std::min(path.find('.', begin), path.size());
        value = value->find(path.substr(begin, dot - begin));
        begin = dot + 1;
    }
    return value;
}

// Adds the "_id" as the first field, because the server stores it first.
dbc::Value withId(dbc::Value document, const dbc::ObjectId& id)
{
    if (document.contains("_id"))
        return document;
    dbc::Value result;
    result.reserve(document.size() + 1);
    result.append("_id", id);
    for (dbc::Field& field : document.fields())
        result.append(field.key(), std::move(field.value()));
    return result;
}

struct Counts
{
    std::uint64_t inserted = 0;
    std::uint64_t replaced = 0;
    std::uint64_t duplicates = 0;
    std::uint64_t unacknowledged = 0; // sent with w=0, so maybe not stored
};

class Import
{
public:
    Import(const GlobalOptions& global, const ImportCommand& command)
        : m_command(command), m_upsertFields(splitFields(command.upsert)), m_state(command.state), m_mark(beginning()),
          m_isResumed(!m_mark.run.empty()), m_client(connect(global.connection)),
          m_collection(collectionOf(*m_client, command.collection)), m_losses(command.losses),
          m_isQuiet(global.connection.quiet)
    {
        if (m_mark.run.empty())
            m_mark.run = m_client->createId();
    }

    void run(InputFile& input, DocumentReader& reader)
    {
        const InterruptWatch watch;
        Progress progress("importing", input.size(), m_isQuiet, Progress::Unit::Documents, m_command.showsProgress);
        readAll(reader, [&] { progress.show(m_mark.done, input.position()); });
        if (isInterrupted())
            throw Failure(Interrupted, "interrupted; " + stopText(m_lastLine, true));
        m_state.remove();
    }

    const Counts& counts() const noexcept { return m_counts; }
    const LossCounter& losses() const noexcept { return m_losses; }

private:
    struct Item
    {
        std::vector<std::uint8_t> bson;
        dbc::Value filter; // for an upsert
        std::uint64_t line;
    };

    // Limits memory also for large documents.
    static constexpr std::size_t largestBatch = std::size_t{16} * 1024 * 1024;

    Mark beginning() const
    {
        if (const auto mark = m_state.read())
            return *mark;
        return m_command.resume.empty() ? Mark() : Mark::parse(m_command.resume, "--resume");
    }

    template <typename Show>
    void readAll(DocumentReader& reader, const Show& show)
    {
        try
        {
            for (std::uint64_t number = 0; number < m_mark.done; ++number)
            {
                if (!reader.skip())
                    throw Failure(UsageError, "the input has fewer documents than were imported before");
            }
            while (!isInterrupted() && readNext(reader))
            {
                if (m_batch.size() < m_command.batch && m_batchBytes < largestBatch)
                    continue;
                send();
                show();
            }
        }
        catch (const SendFailure&)
        {
            throw;
        }
        catch (const Failure& failure) // in the input: the documents before it are still sent
        {
            const std::uint64_t line = reader.line();
            send();
            throw Failure(failure.status(), std::string(failure.what()) + "; " + stopText(line, true));
        }
        send();
        show();
    }

    /// A failure whose message already describes how to continue.
    class SendFailure : public Failure
    {
        using Failure::Failure;
    };

    bool readNext(DocumentReader& reader)
    {
        std::optional<dbc::Value> document = reader.next();
        if (!document)
            return false;
        Item item;
        item.line = reader.line();
        const std::uint64_t number = m_mark.done + m_batch.size() + 1;
        if (m_upsertFields.empty())
            document = withId(*std::move(document), idOf(number));
        else
            item.filter = filterOf(*document, item.line);
        item.bson = document->toBson();
        m_losses.look({item.bson.data(), item.bson.size()}, number);
        m_batchBytes += item.bson.size();
        m_batch.push_back(std::move(item));
        m_lastLine = m_batch.back().line;
        return true;
    }

    // The first 16 digits are the run, the last 8 digits the number.
    dbc::ObjectId idOf(std::uint64_t number) const
    {
        std::array<char, 9> digits{};
        std::snprintf(digits.data(), digits.size(), "%08x", static_cast<unsigned>(number & 0xFFFFFFFFU));
        return {m_mark.run.substr(0, 16) + digits.data()};
    }

    dbc::Value filterOf(const dbc::Value& document, std::uint64_t line) const
    {
        dbc::Value filter;
        for (const std::string& field : m_upsertFields)
        {
            const dbc::Value* const value = findField(document, field);
            if (!value)
                throw Failure(UsageError, "line " + std::to_string(line) + ": the document has no field " + field);
            filter.append(field, {{"$eq", *value}}); // a regular expression would match other values
        }
        return filter;
    }

    void send()
    {
        if (m_batch.empty())
            return;
        // If the process is killed in its first batch, the next one must know the run, and so the ids of the documents.
        if (!m_isRecorded)
            m_state.save(m_mark);
        m_isRecorded = true;
        try
        {
            m_upsertFields.empty() ? insertBatch() : upsertBatch();
        }
        catch (const dbc::BulkError& error)
        {
            const bool isDuplicate = m_upsertFields.empty() && error.kind() == dbc::ErrorKind::DuplicateKey;
            throw SendFailure(statusOf(error), error.what() + ("; " + stopAt(error)) +
                                                   (isDuplicate ? "; --skip-duplicates skips such documents" : ""));
        }
        m_mark.done += m_batch.size();
        m_batch.clear();
        m_batchBytes = 0;
        m_state.save(m_mark);
    }

    void insertBatch()
    {
        dbc::InsertManyOptions options;
        options.ordered = !skipsDuplicates();
        options.returnIds = false;
        std::size_t next = 0;
        const auto nextDocument = [this, &next]() -> std::optional<dbc::BsonView> {
            if (next == m_batch.size())
                return std::nullopt;
            const std::vector<std::uint8_t>& bson = m_batch[next++].bson;
            return dbc::BsonView{bson.data(), bson.size()};
        };
        try
        {
            const auto result = m_collection.insertMany(nextDocument, options);
            m_counts.inserted += static_cast<std::uint64_t>(result.inserted);
            m_counts.unacknowledged += result.acknowledged ? 0 : m_batch.size();
        }
        catch (const dbc::BulkError& error)
        {
            if (options.ordered || !refusesOnlyDuplicates(error))
                throw;
            m_counts.inserted += static_cast<std::uint64_t>(error.result().inserted);
            m_counts.duplicates += error.errors().size();
        }
    }

    bool skipsDuplicates() const { return m_command.skipDuplicates || m_isResumed; }

    // True if duplicate keys were the only errors. False if the connection broke before all documents were sent, or if
    // the server rejected a document for another reason.
    bool refusesOnlyDuplicates(const dbc::BulkError& error) const
    {
        const auto& errors = error.errors();
        return static_cast<std::size_t>(error.result().inserted) + errors.size() == m_batch.size() &&
               std::all_of(errors.begin(), errors.end(),
                           [](const dbc::WriteError& refused) { return refused.kind == dbc::ErrorKind::DuplicateKey; });
    }

    void upsertBatch()
    {
        dbc::Bulk bulk;
        dbc::BulkReplaceOptions options;
        options.upsert = true;
        for (const Item& item : m_batch)
            bulk.replaceOne(item.filter, dbc::BsonView{item.bson.data(), item.bson.size()}, options);
        const auto result = m_collection.bulkWrite(bulk);
        m_counts.inserted += result.upsertedIds.size();
        m_counts.replaced += static_cast<std::uint64_t>(result.matched);
        m_counts.unacknowledged += result.acknowledged ? 0 : m_batch.size();
    }

    // Returns the message. In an ordered write, the documents before the rejected one are stored, so they are done.
    std::string stopAt(const dbc::BulkError& error)
    {
        const bool isOrdered = !m_upsertFields.empty() || !skipsDuplicates();
        const bool isExact = isOrdered && !error.errors().empty() && error.errors()[0].index < m_batch.size();
        const std::size_t failed = isExact ? error.errors()[0].index : 0;
        m_mark.done += failed;
        // Replacing a document twice does no harm.
        return stopText(m_batch[failed].line, isExact || !m_upsertFields.empty());
    }

    std::string stopText(std::uint64_t line, bool isExact)
    {
        const Mark mark{m_mark.done, isExact && !m_isResumed ? "" : m_mark.run};
        m_state.save(mark);
        std::string text = "stopped at line " + std::to_string(line) + ", after " + (isExact ? "" : "at least ") +
                           counted(m_mark.done, "document") + "; continue with ";
        if (m_state.isUsed())
            return text + "the same command";
        return text + "--resume " + mark.text();
    }

    const ImportCommand& m_command;
    const std::vector<std::string> m_upsertFields;
    const StateFile m_state;
    Mark m_mark;
    const bool m_isResumed;    // documents after the mark may be stored
    bool m_isRecorded = false; // the state file has the run
    std::unique_ptr<DataBaseClient> m_client;
    dbc::Collection m_collection;
    LossCounter m_losses;
    const bool m_isQuiet;
    std::vector<Item> m_batch;
    std::size_t m_batchBytes = 0;
    std::uint64_t m_lastLine = 1;
    Counts m_counts;
};

std::unique_ptr<DocumentReader> openReader(InputFile& input, const ImportCommand& command)
{
    const FileFormat format = command.format.value_or(formatOf(command.file));
    if (format == FileFormat::Json && !command.header.empty())
        throw Failure(UsageError, "--header is only for CSV and TSV");
    if (format == FileFormat::Json)
        return std::make_unique<JsonReader>(input);
    return std::make_unique<TableReader>(input, format == FileFormat::Csv ? ',' : '\t', command.header);
}

void printSummary(const Counts& counts, bool isUpsert)
{
    if (counts.unacknowledged > 0)
        std::cerr << "sent " << counts.unacknowledged << ", not acknowledged\n";
    else if (isUpsert)
        std::cerr << "replaced " << counts.replaced << ", inserted " << counts.inserted << '\n';
    else
        std::cerr << "imported " << counts.inserted << '\n';
    if (counts.duplicates > 0)
        std::cerr << "skipped " << counts.duplicates << " with a duplicate key\n";
}

} // namespace

FileFormat formatOf(const std::string& path)
{
    const std::string end = path.size() < 4 ? "" : path.substr(path.size() - 4);
    return end == ".csv" ? FileFormat::Csv : end == ".tsv" ? FileFormat::Tsv : FileFormat::Json;
}

int importDocuments(const GlobalOptions& global, const ImportCommand& command)
{
    InputFile input(command.file);
    const auto import = std::make_unique<Import>(global, command);
    const std::unique_ptr<DocumentReader> reader = openReader(input, command);
    import->run(input, *reader);
    if (!global.connection.quiet)
    {
        printSummary(import->counts(), !command.upsert.empty());
        import->losses().print(std::cerr);
    }
    return Success;
}
