// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "support/shapes.h"

#include "bson_to_properties.h"
#include "driver/bson_handles.h"
#include "object_properties.h"
#include "properties_to_bson.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <random>
#include <stdexcept>

namespace {

std::string numbered(const char* prefix, std::size_t number)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%s%06zu", prefix, number);
    return text;
}

std::vector<std::uint8_t> bytesOf(const OwnedBson& bson)
{
    const std::uint8_t* data = bson_get_data(bson.get());
    return {data, data + bson.get()->len};
}

std::vector<std::uint8_t> canonical(const std::vector<std::uint8_t>& bytes)
{
    bson_t view;
    ObjectProperties document;
    OwnedBson written;
    if (!bson_init_static(&view, bytes.data(), bytes.size()) || !BsonToProperties::convert(&view, &document) ||
        !PropertiesToBson::convert(document, written.get()))
        throw std::logic_error("a shape cannot be converted");
    return bytesOf(written);
}

Shape shapeOf(const std::string& name, const std::vector<Step>& steps)
{
    OwnedBson bson;
    build(steps, bson.get());
    Shape shape;
    shape.name = name;
    shape.bytes = bytesOf(bson);
    shape.canonicalBytes = canonical(shape.bytes);
    shape.steps = steps;
    shape.canonicalSteps = stepsOf(shape.canonicalBytes);
    shape.fields = static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](const Step& step) {
        return step.kind != Step::Kind::EndGroup && step.kind != Step::Kind::EndArray;
    }));
    if (shape.canonicalBytes.size() != shape.bytes.size())
        throw std::logic_error("a field of a shape was lost");
    return shape;
}

/// Records the steps of a shape.
class Writer
{
public:
    Writer& int32(const std::string& key, int value) { return add({Step::Kind::Int32, key, value, 0, "", {}}); }
    Writer& int64(const std::string& key, long value) { return add({Step::Kind::Int64, key, value, 0, "", {}}); }
    Writer& real(const std::string& key, double value) { return add({Step::Kind::Double, key, 0, value, "", {}}); }
    Writer& boolean(const std::string& key, bool value)
    {
        return add({Step::Kind::Bool, key, value ? 1 : 0, 0, "", {}});
    }
    Writer& text(const std::string& key, const std::string& value)
    {
        return add({Step::Kind::Text, key, 0, 0, value, {}});
    }
    Writer& binary(const std::string& key, std::size_t size)
    {
        return add({Step::Kind::Binary, key, 0, 0, "", std::vector<unsigned char>(size, 0x5A)});
    }
    Writer& beginGroup(const std::string& key) { return add({Step::Kind::BeginGroup, key, 0, 0, "", {}}); }
    Writer& endGroup() { return add({Step::Kind::EndGroup, "", 0, 0, "", {}}); }
    Writer& beginArray(const std::string& key) { return add({Step::Kind::BeginArray, key, 0, 0, "", {}}); }
    Writer& endArray() { return add({Step::Kind::EndArray, "", 0, 0, "", {}}); }

    const std::vector<Step>& steps() const { return m_steps; }

private:
    Writer& add(Step step)
    {
        m_steps.push_back(std::move(step));
        return *this;
    }

    std::vector<Step> m_steps;
};

void writeAddress(Writer& writer, const std::string& key)
{
    writer.beginGroup(key)
        .text("street", "12 Harbour Lane")
        .text("city", "Springfield")
        .text("postcode", "SP1 4ZZ")
        .text("country", "Ruritania")
        .real("latitude", 51.5033)
        .real("longitude", -0.1276)
        .endGroup();
}

// One of a thousand fields. Their types repeat those of the flat record.
void writeNumbered(Writer& writer, std::size_t index)
{
    const std::string key = numbered("field_", index);
    switch (index % 4)
    {
    case 0:
        writer.int32(key, static_cast<int>(index));
        break;
    case 1:
        writer.text(key, numbered("value ", index));
        break;
    case 2:
        writer.real(key, 0.5 * static_cast<double>(index));
        break;
    default:
        writer.boolean(key, index % 8 == 3);
        break;
    }
}

Shape makeFlatRecord()
{
    Writer writer;
    writer.text("name", "Katherine Johnson")
        .text("email", "katherine.johnson@example.org")
        .text("phone", "+44 20 7946 0958")
        .text("city", "Springfield")
        .int32("age", 42)
        .int32("visits", 1017)
        .int32("level", 7)
        .int64("created", 1500000000000)
        .int64("modified", 1700000000000)
        .real("balance", 1234.56)
        .real("score", 0.875)
        .boolean("active", true);
    return shapeOf("flat", writer.steps());
}

Shape makeNestedOrder()
{
    Writer writer;
    writer.text("number", "2024-000123")
        .text("state", "shipped")
        .text("currency", "EUR")
        .int64("created", 1700000000000)
        .int64("modified", 1700000360000)
        .int32("revision", 3)
        .real("total", 259.9)
        .boolean("paid", true)
        .boolean("gift", false)
        .text("note", "Leave the parcel with the neighbour");
    writer.beginGroup("customer")
        .text("name", "Katherine Johnson")
        .text("email", "katherine.johnson@example.org")
        .text("phone", "+44 20 7946 0958")
        .int32("level", 7)
        .int64("since", 1500000000000)
        .boolean("newsletter", true);
    writeAddress(writer, "address");
    writer.endGroup();
    writer.beginGroup("shipping").text("carrier", "Parcel Post").text("service", "express").int32("parcels", 2);
    writer.real("weight", 3.25).real("cost", 12.5).boolean("insured", true);
    writeAddress(writer, "address");
    writer.endGroup();
    writer.beginGroup("payment")
        .text("method", "card")
        .text("provider", "Example Payments")
        .text("reference", "A-4471-09");
    writer.int64("time", 1700000100000).real("amount", 259.9).boolean("captured", true).endGroup();
    writer.beginArray("lines");
    for (std::size_t line = 0; line < 4; ++line)
    {
        writer.beginGroup(std::to_string(line))
            .text("article", numbered("SKU-", line))
            .text("title", "Stainless steel kettle")
            .int32("quantity", 1 + static_cast<int>(line))
            .real("price", 49.5)
            .boolean("returned", false)
            .endGroup();
    }
    writer.endArray();
    return shapeOf("nested", writer.steps());
}

Shape makeWide(const std::string& name, const std::vector<std::size_t>& order)
{
    Writer writer;
    for (const std::size_t index : order)
        writeNumbered(writer, index);
    return shapeOf(name, writer.steps());
}

std::vector<std::size_t> inOrder(std::size_t size)
{
    std::vector<std::size_t> order(size);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

Shape makeWideShuffled()
{
    std::vector<std::size_t> order = inOrder(1000);
    std::shuffle(order.begin(), order.end(), std::mt19937(20240229));
    return makeWide("wide_shuffled", order);
}

Shape makeArrayOfNumbers()
{
    Writer writer;
    writer.beginArray("values");
    for (std::size_t index = 0; index < 10000; ++index)
        writer.real(std::to_string(index), 0.25 * static_cast<double>(index));
    writer.endArray();
    return shapeOf("array_of_numbers", writer.steps());
}

Shape makeArrayOfDocuments()
{
    Writer writer;
    writer.beginArray("items");
    for (std::size_t index = 0; index < 1000; ++index)
    {
        writer.beginGroup(std::to_string(index))
            .int32("id", static_cast<int>(index))
            .text("name", numbered("item ", index))
            .real("price", 0.25 * static_cast<double>(index))
            .endGroup();
    }
    writer.endArray();
    return shapeOf("array_of_documents", writer.steps());
}

Shape makeDeepDocument()
{
    Writer writer;
    for (int level = 0; level < 100; ++level)
        writer.int32("level", level).beginGroup("next");
    for (int level = 0; level < 100; ++level)
        writer.endGroup();
    return shapeOf("deep", writer.steps());
}

Shape makeLongTexts()
{
    Writer writer;
    for (std::size_t index = 0; index < 100; ++index)
        writer.text(numbered("text_", index), std::string(1024, 'x'));
    return shapeOf("texts", writer.steps());
}

Shape makeLargeBinary()
{
    Writer writer;
    writer.binary("content", std::size_t{1} << 20);
    return shapeOf("binary", writer.steps());
}

} // namespace

const Shape& flatRecord()
{
    static const Shape shape = makeFlatRecord();
    return shape;
}

const Shape& nestedOrder()
{
    static const Shape shape = makeNestedOrder();
    return shape;
}

const Shape& wideSorted()
{
    static const Shape shape = makeWide("wide_sorted", inOrder(1000));
    return shape;
}

const Shape& wideShuffled()
{
    static const Shape shape = makeWideShuffled();
    return shape;
}

const Shape& arrayOfNumbers()
{
    static const Shape shape = makeArrayOfNumbers();
    return shape;
}

const Shape& arrayOfDocuments()
{
    static const Shape shape = makeArrayOfDocuments();
    return shape;
}

const Shape& deepDocument()
{
    static const Shape shape = makeDeepDocument();
    return shape;
}

const Shape& longTexts()
{
    static const Shape shape = makeLongTexts();
    return shape;
}

const Shape& largeBinary()
{
    static const Shape shape = makeLargeBinary();
    return shape;
}

Shape flatShape(std::size_t size)
{
    return makeWide("flat_" + std::to_string(size), inOrder(size));
}

Shape arrayShape(std::size_t size)
{
    Writer writer;
    writer.beginArray("values");
    for (std::size_t index = 0; index < size; ++index)
        writer.int32(std::to_string(index), static_cast<int>(index));
    writer.endArray();
    return shapeOf("array_" + std::to_string(size), writer.steps());
}

const std::vector<const Shape*>& allShapes()
{
    static const std::vector<const Shape*> shapes{&flatRecord(),   &nestedOrder(),    &wideSorted(),
                                                  &wideShuffled(), &arrayOfNumbers(), &arrayOfDocuments(),
                                                  &deepDocument(), &longTexts(),      &largeBinary()};
    return shapes;
}
