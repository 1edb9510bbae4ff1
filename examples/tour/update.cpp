// Chapter "update": the document passed is the operand of the operator that the command names.
#include "tour.h"

#include <algorithm>

namespace tour {

namespace {

constexpr const char* notesCollection = "notes";

std::size_t countWith(Tour& tour, const std::string& field)
{
    return count(tour, countriesCollection, companion::document({{field, companion::object({{"$exists", true}})}}));
}

// One field comes, gets another name and goes again, in every country that has no subdivisions.
void everyMatch(Tour& tour)
{
    struct Round
    {
        const char* what;
        UpdateCommand command;
        const char* operand;
        bool visited; ///< whether the countries have this field afterwards
        bool seen;
    };
    const Round rounds[] = {
        {"$set, every undivided country", UpdateCommandSet, R"({"visited": true})", true, false},
        {"$rename", UpdateCommandRename, R"({"visited": "seen"})", false, true},
        {"$unset", UpdateCommandUnset, R"({"seen": ""})", false, false},
    };
    const auto undivided = static_cast<std::size_t>(std::count_if(
        tour.countries.begin(), tour.countries.end(), [](const Country& c) { return c.subdivisions.empty(); }));
    const ObjectProperties query = companion::document({{"divided", false}});
    for (const Round& round : rounds)
    {
        Step step(round.what);
        tour.client->update(tour.database, countriesCollection, query, fromJson(round.operand), UpdateFlagMultiUpdate,
                            round.command);
        step.done(undivided);
        const std::size_t visited = countWith(tour, "visited");
        const std::size_t seen = countWith(tour, "seen");
        show(std::string(round.operand) + " -> " + std::to_string(visited) + " have \"visited\", " +
             std::to_string(seen) + " have \"seen\"");
        agree("visited", visited, round.visited ? undivided : 0);
        agree("seen", seen, round.seen ? undivided : 0);
    }
}

// The document that has this id, changed or, when there is none, inserted.
void oneNote(Tour& tour, const ObjectProperties& query, const std::string& what, UpdateFlag flag, UpdateCommand command,
             const std::string& operand)
{
    Step step(what);
    tour.client->update(tour.database, notesCollection, query, fromJson(operand), flag, command);
    step.done(1);

    companion::Results found;
    tour.client->find(tour.database, notesCollection, query, companion::document({{"_id", 0}}), found, 0, 0);
    agree("notes with that id", found.size(), 1);
    show(operand + " -> " + toJson(found.front()));
}

void oneDocument(Tour& tour)
{
    // Here, and not in write(), an id can be chosen.
    const ObjectProperties query = companion::document({{"_id", companion::ObjectId{tour.client->createId()}}});
    const auto change = [&](const std::string& what, UpdateFlag flag, UpdateCommand command,
                            const std::string& operand) { oneNote(tour, query, what, flag, command, operand); };
    change("upsert: there is no such document yet", UpdateFlagUpsert, UpdateCommandSet,
           R"({"title": "to see", "codes": ["DE"]})");
    change("$push", UpdateFlagNone, UpdateCommandPush, R"({"codes": "FR"})");
    change("$addToSet: it is there already", UpdateFlagNone, UpdateCommandAddToSet, R"({"codes": "FR"})");
    change("$push", UpdateFlagNone, UpdateCommandPush, R"({"codes": "IT"})");
    change("$pop: 1 is the last element, -1 the first", UpdateFlagNone, UpdateCommandPop, R"({"codes": -1})");
    change("$pull", UpdateFlagNone, UpdateCommandPull, R"({"codes": "IT"})");
    change("replace: no operator, a whole document", UpdateFlagNone, UpdateCommandReplace, R"({"title": "seen"})");
    change("replace with an operator of one's own", UpdateFlagNone, UpdateCommandReplace, R"({"$inc": {"visits": 2}})");
}

void refused(Tour& tour)
{
    const ObjectProperties operand = companion::document({{"title", 1}});
    Step step("$push to a field that is no array");
    const std::string said = answer([&] {
        tour.client->update(tour.database, notesCollection, ObjectProperties(), operand, UpdateFlagNone,
                            UpdateCommandPush);
    });
    step.done(0);
    show(said);
}

} // namespace

void update(Tour& tour)
{
    needStored(tour);
    title("update", "operators on every match, on one document, and on one that is not there yet");
    everyMatch(tour);
    oneDocument(tour);
    refused(tour);
}

} // namespace tour
