#include "commands.h"

#include "document_walk.h"
#include "failure.h"
#include "input.h"
#include "interrupt.h"
#include "losses.h"
#include "progress.h"
#include "query_words.h"
#include "replaced_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

const std::map<std::string, LossPolicy> policies{
    {"ignore", LossPolicy::Ignore}, {"count", LossPolicy::Count}, {"refuse", LossPolicy::Refuse}};

struct ExportCommand
{
    std::string collection;
    std::vector<std::string> query;
    std::string file;
    LossPolicy losses = LossPolicy::Count;
};

int exportDocuments(const GlobalOptions& global, const ExportCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, command.collection);
    std::optional<ReplacedFile> file;
    if (!command.file.empty())
        file.emplace(command.file);
    DocumentWriter writer(file ? file->stream() : std::cout, global.dialect.value_or(Dialect::Canonical),
                          global.asArray);
    LossCounter losses(command.losses);
    std::uint64_t done = 0;
    {
        const bool isShown = Progress::isShown(global.connection.quiet);
        Progress progress("exporting", isShown ? documentCount(collection, query) : 0, global.connection.quiet);
        forEachDocument([&] { return collection.find(query); },
                        [&](dbc::Cursor& cursor) {
                            losses.look(cursor.bson(), ++done);
                            writer.write(cursor.value());
                            progress.show(done);
                        });
        writer.finish();
        if (file)
            file->commit();
    }
    if (!global.connection.quiet)
    {
        std::cerr << "exported " << done << '\n';
        losses.print(std::cerr);
    }
    return done > 0 ? Success : NothingFound;
}

// How far an import came. Documents without an "_id" get one made of the run's token and their number, so that a batch
// that is sent again after an interruption meets its own keys instead of being stored twice.
class ImportState
{
public:
    explicit ImportState(std::string path) : m_path(std::move(path))
    {
        std::ifstream file(m_path);
        std::string token;
        if (m_path.empty() || !(file >> token >> m_done))
            return;
        if (token.size() != 24 || token.find_first_not_of("0123456789abcdef") != std::string::npos)
            throw Failure(UsageError, m_path + " is not the state of an import");
        m_token = token;
    }

    std::uint64_t done() const noexcept { return m_done; }
    bool isResumable() const noexcept { return !m_path.empty(); }

    // The first digits are those of the token, the last eight the number.
    dbc::ObjectId idOf(std::uint64_t number) const
    {
        std::array<char, 9> digits;
        std::snprintf(digits.data(), digits.size(), "%08x", static_cast<unsigned>(number & 0xFFFFFFFFU));
        return {m_token.substr(0, 16) + digits.data()};
    }

    // Written beside and renamed, so that an interruption leaves the old or the new state.
    void save(std::uint64_t done)
    {
        m_done = done;
        if (m_path.empty())
            return;
        const std::string next = m_path + ".next";
        std::ofstream file(next);
        if (!(file << m_token << ' ' << m_done << '\n').flush() || std::rename(next.c_str(), m_path.c_str()) != 0)
            throw Failure(UsageError, "cannot write " + m_path);
    }

    void remove() const
    {
        if (!m_path.empty())
            std::remove(m_path.c_str());
    }

private:
    const std::string m_path;
    std::string m_token = DataBaseClient().createId();
    std::uint64_t m_done = 0;
};

struct ImportCommand
{
    std::string collection;
    std::string file;
    std::string resume;
    std::uint64_t batch = 1000;
    bool skipDuplicates = false;
    LossPolicy losses = LossPolicy::Count;
};

// Empty if anything but duplicate keys kept documents from being inserted.
std::optional<std::uint64_t> insertedBeside(const dbc::BulkError& error, std::size_t documents)
{
    const auto& errors = error.errors();
    const auto inserted = static_cast<std::uint64_t>(error.result().inserted);
    const bool isAll = inserted + errors.size() == documents; // otherwise the connection broke before the rest
    const bool isDuplicate = std::all_of(errors.begin(), errors.end(), [](const dbc::WriteError& refused) {
        return refused.kind == dbc::ErrorKind::DuplicateKey;
    });
    return isAll && isDuplicate && !errors.empty() ? std::optional<std::uint64_t>(inserted) : std::nullopt;
}

class Import
{
public:
    Import(const GlobalOptions& global, const ImportCommand& command)
        : m_command(command), m_client(connect(global.connection)),
          m_collection(collectionOf(*m_client, command.collection)), m_state(command.resume), m_losses(command.losses),
          m_isQuiet(global.connection.quiet)
    {}

    void run(std::istream& stream)
    {
        const InterruptWatch watch;
        Progress progress("importing", 0, m_isQuiet); // wiped before anybody prints a summary
        DocumentReader reader(stream);
        while (std::optional<dbc::Value> document = reader.next())
        {
            if (isInterrupted())
                break;
            if (reader.count() <= m_state.done())
                continue; // stored by the run that is resumed
            if (!document->contains("_id"))
                document->append("_id", m_state.idOf(reader.count()));
            m_batch.push_back(document->toBson());
            m_batchBytes += m_batch.back().size();
            m_losses.look({m_batch.back().data(), m_batch.back().size()}, reader.count());
            if (m_batch.size() >= m_command.batch || m_batchBytes >= largestBatch)
                send(progress);
        }
        send(progress);
        throwIfInterrupted();
        m_state.remove();
    }

    std::uint64_t inserted() const noexcept { return m_inserted; }
    std::uint64_t duplicates() const noexcept { return m_duplicates; }
    /// Documents sent with w=0: whether they were stored is not known.
    std::uint64_t unacknowledged() const noexcept { return m_unacknowledged; }
    const LossCounter& losses() const noexcept { return m_losses; }

private:
    // However few documents are in it: memory stays flat for documents of any size.
    static constexpr std::size_t largestBatch = 16 * 1024 * 1024;

    void send(Progress& progress)
    {
        if (m_batch.empty())
            return;
        if (const auto inserted = insertBatch())
        {
            m_inserted += *inserted;
            m_duplicates += m_batch.size() - *inserted;
        }
        else
            m_unacknowledged += m_batch.size();
        m_state.save(m_state.done() + m_batch.size());
        m_batch.clear();
        m_batchBytes = 0;
        progress.show(m_state.done());
    }

    // How many were inserted; empty if the server does not say.
    std::optional<std::uint64_t> insertBatch()
    {
        dbc::InsertManyOptions options;
        options.ordered = !m_command.skipDuplicates && !m_state.isResumable();
        options.returnIds = false;
        std::size_t next = 0;
        const auto nextDocument = [this, &next]() -> std::optional<dbc::BsonView> {
            if (next == m_batch.size())
                return std::nullopt;
            const std::vector<std::uint8_t>& document = m_batch[next++];
            return dbc::BsonView{document.data(), document.size()};
        };
        try
        {
            const auto result = m_collection.insertMany(nextDocument, options);
            return result.acknowledged ? std::optional<std::uint64_t>(result.inserted) : std::nullopt;
        }
        catch (const dbc::BulkError& error)
        {
            const auto inserted = insertedBeside(error, m_batch.size());
            if (options.ordered || !inserted)
                throw;
            return inserted;
        }
    }

    const ImportCommand& m_command;
    std::unique_ptr<DataBaseClient> m_client;
    dbc::Collection m_collection;
    ImportState m_state;
    LossCounter m_losses;
    const bool m_isQuiet;
    std::vector<std::vector<std::uint8_t>> m_batch;
    std::size_t m_batchBytes = 0;
    std::uint64_t m_inserted = 0;
    std::uint64_t m_duplicates = 0;
    std::uint64_t m_unacknowledged = 0;
};

int importDocuments(const GlobalOptions& global, const ImportCommand& command)
{
    std::ifstream file;
    if (!command.file.empty())
    {
        file.open(command.file, std::ios::binary);
        if (!file)
            throw Failure(UsageError, "cannot read " + command.file);
    }
    const auto import = std::make_unique<Import>(global, command);
    import->run(command.file.empty() ? std::cin : file);
    if (!global.connection.quiet)
    {
        if (import->unacknowledged() > 0)
            std::cerr << "sent " << import->unacknowledged() << ", not acknowledged\n";
        else
            std::cerr << "imported " << import->inserted() << '\n';
        if (import->duplicates() > 0)
            std::cerr << "skipped " << import->duplicates() << " with a duplicate key\n";
        import->losses().print(std::cerr);
    }
    return Success;
}

void addLossOption(CLI::App& app, LossPolicy& policy)
{
    addChoice(app, "--losses", policy, policies,
              "What to do about fields that the library's document model drops or changes; count unless given");
}

} // namespace

void addTransferCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto outgoing = std::make_shared<ExportCommand>();
    CLI::App* app = program.add_subcommand("export", "Write documents to a file or to standard output");
    app->add_option("collection", outgoing->collection, collectionHelp)->required();
    app->add_option("query", outgoing->query, queryHelp);
    app->add_option("--file,-f", outgoing->file,
                    "File to write, there only when it is complete; standard output unless given");
    addLossOption(*app, outgoing->losses);
    app->callback([=, &global, &work] { work = [=, &global] { return exportDocuments(global, *outgoing); }; });

    const auto incoming = std::make_shared<ImportCommand>();
    app = program.add_subcommand("import", "Insert documents from a file or from standard input");
    app->add_option("collection", incoming->collection, collectionHelp)->required();
    app->add_option("--file,-f", incoming->file,
                    "JSON, a document on each line or one array; standard input unless given");
    app->add_option("--batch", incoming->batch, "Documents in one request; 1000 unless given")
        ->check(CLI::Range(1, 100000));
    app->add_flag("--skip-duplicates", incoming->skipDuplicates, "Skip documents with a duplicate key");
    app->add_option("--resume", incoming->resume,
                    "File that records how far the import came; a second run continues there");
    addLossOption(*app, incoming->losses);
    app->callback([=, &global, &work] { work = [=, &global] { return importDocuments(global, *incoming); }; });
}
