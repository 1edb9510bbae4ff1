// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Documents, filters and converters if memory runs out.

#include "allocation_failure.h"
#include "bson_handles.h"
#include "bson_to_properties.h"
#include "factories.h"
#include "json_to_properties.h"
#include "object_filter.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "properties_to_json.h"
#include "row_name.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

const std::string longText = "a text that is too long for the small buffer of a string";
const std::string longPath = "/a first segment that is long/a second segment that is long";
const std::vector<unsigned char> bytes(100, 7);

void fill(ObjectProperties& document)
{
    document.setValueString("text", longText);
    document.setValueString("group/inner/text", longText);
    document.setValueBinary("group/binary", bytes);
    document.setValueRegex("group/regex", longText, longText);
    document.beginArray("array");
    document.setValueInt32("0", 1);
    document.beginGroup("1");
    document.setValueDouble("d", 1.5);
    document.beginGroup("/group");
}

struct Documents
{
    Documents()
    {
        fill(document);
        fill(other);
        PropertiesToBson::convert(other, bson.get());
        PropertiesToJson::convert(other, json);
    }

    void use()
    {
        document.beginGroup("");
        document.setValueString("used", longText);
        EXPECT_EQ(document.valueAsString("used", ""), longText);
        const ObjectProperties copy(document);
        OwnedBson written;
        EXPECT_TRUE(PropertiesToBson::convert(copy, written.get()));
        other.beginGroup("");
        other.setValueString("used", longText);
    }

    ObjectProperties document;
    ObjectProperties other;
    OwnedBson bson;
    std::string json;
};

class DocumentOperationWithoutMemory : public testing::TestWithParam<test_support::AllocatingOperation<Documents>>
{};

TEST_P(DocumentOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Documents>(GetParam().operate);
}

const test_support::AllocatingOperation<Documents> documentOperations[] = {
    {"construction", [](Documents&) { const ObjectProperties made; }},
    {"copyConstruction", [](Documents& d) { const ObjectProperties made(d.other); }},
    {"moveConstruction",
     [](Documents& d) {
         ObjectProperties made(std::move(d.document));
         d.document = std::move(made);
     }},
    {"factory", [](Documents&) { const std::unique_ptr<ObjectProperties> made(createObjectProperties()); }},
    {"beginObject", [](Documents& d) { d.document.beginObject(0); }},
    {"beginGroup", [](Documents& d) { d.document.beginGroup(longPath); }},
    {"beginGroupOnAConstDocument", [](Documents& d) { std::as_const(d.document).beginGroup(longPath); }},
    {"beginArray", [](Documents& d) { d.document.beginArray(longPath); }},
    {"beginGroupOnAnArray",
     [](Documents& d) {
         d.document.beginArray("/array");
         d.document.beginGroup("element");
     }},
    {"endGroup", [](Documents& d) { d.document.endGroup(); }},
    {"group", [](Documents& d) { d.document.group(); }},
    {"key", [](Documents& d) { d.document.key(); }},
    {"childKeys", [](Documents& d) { d.document.childKeys(); }},
    {"childGroups", [](Documents& d) { d.document.childGroups(); }},
    {"childArrays",
     [](Documents& d) {
         d.document.beginGroup("/");
         d.document.childArrays();
     }},
    {"type", [](Documents& d) { d.document.type(longPath); }},
    {"contains", [](Documents& d) { d.document.contains(longPath); }},
    {"setValueStringAtTheCursor", [](Documents& d) { d.document.setValueString(longText); }},
    {"setValueIdAtTheCursor", [](Documents& d) { d.document.setValueId(longText); }},
    {"setValueBinaryAtTheCursor", [](Documents& d) { d.document.setValueBinary(bytes); }},
    {"setValueRegexAtTheCursor", [](Documents& d) { d.document.setValueRegex(longText, longText); }},
    {"setValueInt32AtTheCursor", [](Documents& d) { d.document.setValueInt32(1); }},
    {"setValueString", [](Documents& d) { d.document.setValueString(longPath, longText); }},
    {"setValueBool", [](Documents& d) { d.document.setValueBool(longPath, true); }},
    {"setValueInt32", [](Documents& d) { d.document.setValueInt32(longPath, 1); }},
    {"setValueInt64", [](Documents& d) { d.document.setValueInt64(longPath, 1); }},
    {"setValueInt", [](Documents& d) { d.document.setValueInt(longPath, 1); }},
    {"setValueLongLong", [](Documents& d) { d.document.setValueLongLong(longPath, 1); }},
    {"setValueDouble", [](Documents& d) { d.document.setValueDouble(longPath, 1); }},
    {"setValueTime", [](Documents& d) { d.document.setValueTime(longPath, 1); }},
    {"setValueId", [](Documents& d) { d.document.setValueId(longPath, longText); }},
    {"setValueBinary", [](Documents& d) { d.document.setValueBinary(longPath, bytes); }},
    {"setValueRegex", [](Documents& d) { d.document.setValueRegex(longPath, longText, longText); }},
    {"currentValueAsString", [](Documents& d) { d.document.currentValueAsString(longText); }},
    {"currentValueAsId", [](Documents& d) { d.document.currentValueAsId(longText); }},
    {"currentValueAsBinary", [](Documents& d) { d.document.currentValueAsBinary(bytes); }},
    {"currentValueAsRegex", [](Documents& d) { d.document.currentValueAsRegex(longText, longText); }},
    {"valueAsString", [](Documents& d) { d.document.valueAsString("/text", ""); }},
    {"valueAsBool", [](Documents& d) { d.document.valueAsBool(longPath, true); }},
    {"valueAsInt32", [](Documents& d) { d.document.valueAsInt32(longPath, 1); }},
    {"valueAsInt64", [](Documents& d) { d.document.valueAsInt64(longPath, 1); }},
    {"valueAsInt", [](Documents& d) { d.document.valueAsInt(longPath, 1); }},
    {"valueAsLongLong", [](Documents& d) { d.document.valueAsLongLong(longPath, 1); }},
    {"valueAsDouble", [](Documents& d) { d.document.valueAsDouble(longPath, 1); }},
    {"valueAsTime", [](Documents& d) { d.document.valueAsTime(longPath, 1); }},
    {"valueAsId", [](Documents& d) { d.document.valueAsId(longPath, longText); }},
    {"valueAsBinary", [](Documents& d) { d.document.valueAsBinary("binary", bytes); }},
    {"valueAsRegex", [](Documents& d) { d.document.valueAsRegex("regex", longText, longText); }},
    {"remove", [](Documents& d) { d.document.remove("inner"); }},
    {"removeByIndex", [](Documents& d) { d.document.remove(0); }},
    {"isEmpty", [](Documents& d) { d.document.isEmpty(); }},
    {"include", [](Documents& d) { d.document.include(longPath, d.other); }},
    {"includeOverAGroup", [](Documents& d) { d.document.include("/group", d.other); }},
    {"includeElement", [](Documents& d) { d.document.includeElement(longPath, d.other); }},
    {"exclude", [](Documents& d) { d.document.exclude("/group", d.other); }},
    {"copyAssignment", [](Documents& d) { d.document = std::as_const(d.other); }},
    {"copyWithCursor", [](Documents& d) { d.document.copyWithCursor(d.other); }},
    {"moveTo", [](Documents& d) { d.document.moveTo(d.document.root()); }},
    {"propertiesToBson",
     [](Documents& d) {
         OwnedBson target;
         PropertiesToBson::convert(d.document, target.get());
     }},
    {"bsonToProperties", [](Documents& d) { BsonToProperties::convert(d.bson.get(), &d.document); }},
    {"propertiesToJson",
     [](Documents& d) {
         std::string json;
         PropertiesToJson::convert(d.document, json);
     }},
    {"jsonToProperties", [](Documents& d) { JsonToProperties::convert(d.json, &d.document); }},
};

INSTANTIATE_TEST_SUITE_P(Document, DocumentOperationWithoutMemory, testing::ValuesIn(documentOperations), RowName());

void fill(ObjectFilter& filter)
{
    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", longText, "i");
    filter.start_and();
    filter.setFilterInt(OperationTypeGreaterOrEqual, "age", 18);
}

struct Filters
{
    Filters()
    {
        fill(filter);
        fill(other);
    }

    void use()
    {
        filter.finish_and();
        filter.finish_or();
        filter.setFilterInt(OperationTypeEqual, "used", 1);
        const ObjectFilter copy(filter);
        EXPECT_FALSE(copy.toObjectProeprties().isEmpty());
        other.finish_and();
    }

    ObjectFilter filter;
    ObjectFilter other;
};

class FilterOperationWithoutMemory : public testing::TestWithParam<test_support::AllocatingOperation<Filters>>
{};

TEST_P(FilterOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Filters>(GetParam().operate);
}

const test_support::AllocatingOperation<Filters> filterOperations[] = {
    {"construction", [](Filters&) { const ObjectFilter made; }},
    {"copyConstruction", [](Filters& f) { const ObjectFilter made(f.other); }},
    {"factory", [](Filters&) { const std::unique_ptr<ObjectFilter> made(createObjectFilter()); }},
    {"startAnd", [](Filters& f) { f.filter.start_and(); }},
    {"startOr", [](Filters& f) { f.filter.start_or(); }},
    {"finishAnd", [](Filters& f) { f.filter.finish_and(); }},
    {"finishOr", [](Filters& f) { f.filter.finish_or(); }},
    {"beginGroup", [](Filters& f) { f.filter.beginGroup(longText); }},
    {"endGroup", [](Filters& f) { f.filter.endGroup(); }},
    {"setFilterString", [](Filters& f) { f.filter.setFilterString(OperationTypeRegex, longText, longText, longText); }},
    {"setFilterBool", [](Filters& f) { f.filter.setFilterBool(OperationTypeNotEqual, longText, true); }},
    {"setFilterInt", [](Filters& f) { f.filter.setFilterInt(OperationTypeEqual, longText, 1); }},
    {"setFilterDouble", [](Filters& f) { f.filter.setFilterDouble(OperationTypeLess, longText, 1); }},
    {"setFilterLongLong", [](Filters& f) { f.filter.setFilterLongLong(OperationTypeUnknown, longText, 1); }},
    {"setFilterTime", [](Filters& f) { f.filter.setFilterTime(OperationTypeExists, longText, 1); }},
    {"setFilterId", [](Filters& f) { f.filter.setFilterId(OperationTypeGreater, longText, longText); }},
    {"setFilterDocument", [](Filters& f) { f.filter.setFilterDocument(longText, f.other.toObjectProeprties()); }},
    {"setFilterDocumentWithoutAKey", [](Filters& f) { f.filter.setFilterDocument("", f.other.toObjectProeprties()); }},
    {"include", [](Filters& f) { f.filter.include(f.other); }},
    {"exclude", [](Filters& f) { f.filter.exclude("/$or", f.other); }},
    {"isEmpty", [](Filters& f) { f.filter.isEmpty(); }},
    {"toObjectProeprties", [](Filters& f) { f.filter.toObjectProeprties(); }},
    {"fromObjectProperties", [](Filters& f) { f.filter.fromObjectProperties(f.other.toObjectProeprties()); }},
    {"assignment", [](Filters& f) { f.filter = std::as_const(f.other); }},
};

INSTANTIATE_TEST_SUITE_P(Filter, FilterOperationWithoutMemory, testing::ValuesIn(filterOperations), RowName());

} // namespace
