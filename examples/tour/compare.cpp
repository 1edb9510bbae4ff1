// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "compare": reads all documents and compares every value with the
// one that was sent.
#include "tour.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <stdexcept>

namespace tour {

namespace {

bool sameValue(Property& a, Property& b)
{
    switch (static_cast<PropertyType>(a.type()))
    {
    case PropertyType::None:
    case PropertyType::Undefined:
    case PropertyType::Group:
    case PropertyType::Array:
        return true; // compared by their children
    case PropertyType::String:
    case PropertyType::Id:
        return std::string(a.textView()) == b.textView();
    case PropertyType::Bool:
        return a.currentValueAsBool(false) == b.currentValueAsBool(false);
    case PropertyType::Int32:
        return a.currentValueAsInt32(0) == b.currentValueAsInt32(0);
    case PropertyType::Int64:
        return a.currentValueAsInt64(0) == b.currentValueAsInt64(0);
    case PropertyType::Time:
        return a.currentValueAsTime(0) == b.currentValueAsTime(0);
    case PropertyType::Double:
        return a.currentValueAsDouble(0) ==
               b.currentValueAsDouble(0); // exactly equal
    case PropertyType::Binary:
        return a.bytesView() == b.bytesView();
    case PropertyType::Regex:
        return a.patternView() == b.patternView() &&
               a.optionsView() == b.optionsView();
    }
    return false;
}

// The children of a node in the order of their keys; those of an array in the
// order of their numbers, because the tree itself has 10 before 2.
// dbc::elements() does this only for an array of a document.
std::vector<std::shared_ptr<Property>> childrenInOrder(const Property& node)
{
    std::vector<std::shared_ptr<Property>> children;
    children.reserve(node.childCount());
    for (const auto& [key, child] : node) // childByIndex(i) would walk to the
                                          // child every time
    {
        children.push_back(child);
    }
    if (node.isArray())
    {
        const auto position = [](const auto& element) {
            return std::strtol(element->keyView().c_str(), nullptr, 10);
        };
        std::stable_sort(children.begin(), children.end(),
                         [&](const auto& a, const auto& b) {
                             return position(a) < position(b);
                         });
    }
    return children;
}

// The path of the first difference between two subtrees; no value if they are
// equal. Elements of an array are compared by their positions, because their
// keys are numbers in one document and all the same in the other.
std::optional<std::string> difference(Property& sent, Property& came)
{
    if (sent.type() != came.type() ||
        sent.childCount() != came.childCount() || !sameValue(sent, came))
        return "";
    const std::vector<std::shared_ptr<Property>> left = childrenInOrder(sent);
    const std::vector<std::shared_ptr<Property>> right =
        childrenInOrder(came);
    for (std::size_t i = 0; i < left.size(); ++i)
    {
        const bool sameKey =
            sent.isArray() || left[i]->keyView() == right[i]->keyView();
        const std::optional<std::string> below =
            sameKey ? difference(*left[i], *right[i]) : "";
        if (below)
        {
            return "/" +
                   (sent.isArray() ? std::to_string(i) : left[i]->key()) +
                   *below;
        }
    }
    return std::nullopt;
}

template <typename Record>
std::map<std::string, const Record*> byId(const std::vector<Record>& records)
{
    std::map<std::string, const Record*> index;
    for (const Record& record : records)
        index[record.id] = &record;
    return index;
}

// Reads the collection and compares each document with the one that was sent.
// Returns the documents.
template <typename Record>
dbc::Results compareAll(Tour& tour, const char* collection,
                        const std::vector<Record>& records)
{
    const std::map<std::string, const Record*> sent = byId(records);
    Step step(std::string("read ") + collection +
                  " back and compare every value",
              "read_all");
    //! [read_all]
    dbc::Results came;
    tour.client->read(tour.database, collection, ObjectProperties(), came);
    //! [read_all]
    agree(collection, came.size(), records.size());
    std::size_t done = 0;
    for (ObjectProperties& document : came)
    {
        const auto origin = sent.find(document.valueAsId("_id", ""));
        if (origin == sent.end())
        {
            throw std::runtime_error(
                std::string(collection) +
                ": a document that was never written: " + toJson(document));
        }
        document.remove("_id"); // added by write()
        const std::optional<std::string> found =
            difference(*origin->second->document.root(), *document.root());
        if (found)
        {
            throw std::runtime_error(std::string(collection) + ": " +
                                     origin->second->code + " differs in " +
                                     *found);
        }
        step.progress(++done, records.size());
    }
    step.done(done);
    show("equal: " + std::to_string(done) + " of " +
         std::to_string(records.size()));
    return came;
}

// The JSON of a document that was read has its arrays in the order of the
// tree: 0, 1, 10, 2 ...
void showTheArrayTrap(Tour& tour, const dbc::Results& came)
{
    std::map<std::string, const Country*> sent;
    for (const Country& country : tour.countries)
        sent[country.code] = &country;
    Step step("compare the same countries as JSON", "to_json");
    std::size_t differ = 0;
    std::size_t beyondTen = 0;
    for (const ObjectProperties& document : came)
    {
        const Country& country = *sent.at(document.valueAsString("code", ""));
        differ += toJson(country.document) != toJson(document) ? 1 : 0;
        beyondTen += country.subdivisions.size() > 10 ? 1 : 0;
    }
    step.done(came.size(), "documents", 0);
    show(std::to_string(differ) + " differ; " + std::to_string(beyondTen) +
         " have more than ten subdivisions");
    note("an array that was read has its elements in the order 0, 1, 10, 11, "
         "2 ...; dbc::elements() sorts them by number");
}

} // namespace

void compare(Tour& tour)
{
    needStored(tour);
    title("compare");
    compareAll(tour, subdivisionsCollection, tour.subdivisions);
    const dbc::Results countries =
        compareAll(tour, countriesCollection, tour.countries);
    showTheArrayTrap(tour, countries);
}

} // namespace tour
