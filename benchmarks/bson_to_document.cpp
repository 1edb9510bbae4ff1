// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to read BSON into a document, compared with libraries that build a tree from the same bytes,
// and with an iteration by libbson, which builds nothing? free_document measures the destruction of the document.

#include "bson_to_properties.h"
#include "driver/bson_handles.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <Poco/BinaryReader.h>
#include <Poco/MemoryStream.h>
#include <Poco/MongoDB/Document.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>

namespace {

const auto prepareNothing = [](auto&) {};

void withDatabaseClient(benchmark::State& state, const Shape& shape)
{
    bson_t bson;
    bson_init_static(&bson, shape.bytes.data(), shape.bytes.size());
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& document) { BsonToProperties::convert(&bson, &document.emplace()); },
        [&](const auto& document) {
            OwnedBson written;
            PropertiesToBson::convert(*document, written.get());
            const std::uint8_t* data = bson_get_data(written.get());
            return std::vector<std::uint8_t>(data, data + written.get()->len) == shape.canonicalBytes;
        });
}

void withNlohmannJson(benchmark::State& state, const Shape& shape)
{
    measure<nlohmann::json>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& json) { json = nlohmann::json::from_bson(shape.bytes); },
        [&](const auto& json) { return nlohmann::json::to_bson(json).size() == shape.bytes.size(); });
}

void withPoco(benchmark::State& state, const Shape& shape)
{
    const auto topLevelFields = nlohmann::json::from_bson(shape.bytes).size();
    measure<Poco::MongoDB::Document::Ptr>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& document) {
            document = new Poco::MongoDB::Document;
            Poco::MemoryInputStream stream(reinterpret_cast<const char*>(shape.bytes.data()),
                                           static_cast<std::streamsize>(shape.bytes.size()));
            Poco::BinaryReader reader(stream, Poco::BinaryReader::LITTLE_ENDIAN_BYTE_ORDER);
            document->read(reader);
        },
        [&](const auto& document) { return document->size() == topLevelFields; });
}

struct Visit
{
    std::size_t fields = 0;
    std::size_t sum = 0; // of what the values and keys are, so that all of them are read
};

void visitWithLibbson(bson_iter_t& iter, Visit& visit)
{
    while (bson_iter_next(&iter))
    {
        ++visit.fields;
        visit.sum += static_cast<unsigned char>(bson_iter_key(&iter)[0]);
        std::uint32_t length = 0;
        const std::uint8_t* bytes = nullptr;
        bson_iter_t nested;
        switch (bson_iter_type(&iter))
        {
        case BSON_TYPE_INT32:
            visit.sum += static_cast<std::size_t>(bson_iter_int32(&iter));
            break;
        case BSON_TYPE_INT64:
            visit.sum += static_cast<std::size_t>(bson_iter_int64(&iter));
            break;
        case BSON_TYPE_DOUBLE:
            visit.sum += bson_iter_double(&iter) > 0 ? 1 : 0;
            break;
        case BSON_TYPE_BOOL:
            visit.sum += bson_iter_bool(&iter) ? 1 : 0;
            break;
        case BSON_TYPE_UTF8:
            visit.sum += static_cast<unsigned char>(bson_iter_utf8(&iter, &length)[0]) + length;
            break;
        case BSON_TYPE_BINARY:
            bson_iter_binary(&iter, nullptr, &length, &bytes);
            visit.sum += bytes[0] + length;
            break;
        default:
            bson_iter_recurse(&iter, &nested);
            visitWithLibbson(nested, visit);
            break;
        }
    }
}

void withLibbson(benchmark::State& state, const Shape& shape)
{
    measure<Visit>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& visit) {
            bson_iter_t iter;
            bson_iter_init_from_data(&iter, shape.bytes.data(), shape.bytes.size());
            visitWithLibbson(iter, visit);
        },
        [&](const auto& visit) { return visit.fields == shape.fields; });
}

const bool registered = addAll(allShapes(), [](const Shape& shape) {
    add("bson_to_document", shape.name, "database_client", [&shape](auto& state) { withDatabaseClient(state, shape); });
    add("bson_to_document", shape.name, "nlohmann_json", [&shape](auto& state) { withNlohmannJson(state, shape); });
    add("bson_to_document", shape.name, "poco", [&shape](auto& state) { withPoco(state, shape); });
    add("bson_to_document", shape.name, "libbson", [&shape](auto& state) { withLibbson(state, shape); });
});

} // namespace
