// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Does the time per field stay the same if documents are larger? Complexity() prints the growth that fits best.

#include "bson_to_properties.h"
#include "driver/bson_handles.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

const auto prepareNothing = [](auto&) {};

/// Redirects standard output to /dev/null until it is destroyed.
class SilentOutput
{
public:
    SilentOutput() : m_output(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    SilentOutput(const SilentOutput&) = delete;
    SilentOutput& operator=(const SilentOutput&) = delete;
    ~SilentOutput()
    {
        std::fflush(stdout);
        dup2(m_output, STDOUT_FILENO);
        close(m_output);
    }

private:
    int m_output;
};

struct Sum
{
    long value = 0;
};

std::size_t sizeOf(const benchmark::State& state)
{
    return static_cast<std::size_t>(state.range(0));
}

void bsonToDocument(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    bson_t bson;
    bson_init_static(&bson, shape.bytes.data(), shape.bytes.size());
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& document) { BsonToProperties::convert(&bson, &document.emplace()); },
        [&](const auto& document) { return document->childCount() == shape.fields; });
}

void documentToBson(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    measure<OwnedBson>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& written) { PropertiesToBson::convert(document, written.get()); },
        [&](const auto& written) { return written.get()->len == shape.bytes.size(); });
}

void copy(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copy) { copy.emplace(document); },
        [&](const auto& copy) { return copy->childCount() == shape.fields; });
}

void release(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), [&](auto& document) { build(shape.steps, document.emplace()); },
        [](auto& document) { document.reset(); }, [](const auto& document) { return !document; });
}

void print(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    SilentOutput silence;
    measure<Sum>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](Sum& printed) {
            document.printAsJson();
            ++printed.value;
        },
        [](const Sum& printed) { return printed.value == 1; });
}

void listKeys(benchmark::State& state)
{
    const Shape shape = flatShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    measure<std::list<std::string>>(
        state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& keys) { keys = document.childKeys(); },
        [&](const auto& keys) { return keys.size() == shape.fields; });
}

long sumTo(std::size_t size)
{
    return static_cast<long>(size * (size - 1) / 2);
}

void readElementsByIndex(benchmark::State& state)
{
    const Shape shape = arrayShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    document.beginArray("values");
    const int size = static_cast<int>(document.childCount());
    measure<Sum>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](Sum& sum) {
            for (int index = 0; index < size; ++index)
            {
                document.beginObject(index);
                sum.value += document.currentValueAsInt32(0);
                document.endObject();
            }
        },
        [&](const Sum& sum) { return sum.value == sumTo(sizeOf(state)); });
}

void visitElements(benchmark::State& state)
{
    const Shape shape = arrayShape(sizeOf(state));
    ObjectProperties document;
    build(shape.steps, document);
    document.beginArray("values");
    measure<Sum>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](Sum& sum) { document.forEachChild([&] { sum.value += document.currentValueAsInt32(0); }); },
        [&](const Sum& sum) { return sum.value == sumTo(sizeOf(state)); });
}

bool addGrowth(const char* operation, void (*function)(benchmark::State&), int largest)
{
    const std::string name = std::string("growth/") + operation;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [function](benchmark::State& state) {
                                     function(state);
                                     state.SetComplexityN(state.range(0));
                                 })
        ->UseManualTime()
        ->RangeMultiplier(8)
        ->Range(8, largest)
        ->Complexity();
    return true;
}

const bool registered = addGrowth("bson_to_document", bsonToDocument, 32768) &&
                        addGrowth("document_to_bson", documentToBson, 32768) && addGrowth("copy", copy, 32768) &&
                        addGrowth("free", release, 32768) && addGrowth("print", print, 32768) &&
                        addGrowth("list_keys", listKeys, 32768) && addGrowth("visit_children", visitElements, 32768) &&
                        addGrowth("begin_object_by_index", readElementsByIndex, 32768);

} // namespace
