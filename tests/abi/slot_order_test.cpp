// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Programs call the public classes through tables of virtual operations that were laid out when they were compiled. One
// row for each operation, in slot order, with its signature: a row may never move, and new operations are never
// virtual.

#include "database_client.h"
#include "object_filter.h"
#include "object_properties.h"
#include "property.h"
#include "virtual_slots.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iosfwd>
#include <list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <link.h>

namespace {

using test_support::behindTheDestructor;
using test_support::expectSlotsInOrder;
using test_support::operation;
using Operations = std::vector<test_support::VirtualOperation>;

// Slots of the table with this symbol: its size less the two words in front of the slots.
std::ptrdiff_t slotsOfTable(const char* symbol)
{
    const void* const table = dlsym(RTLD_DEFAULT, symbol);
    Dl_info info{};
    void* entry = nullptr;
    if (!table || dladdr1(table, &info, &entry, RTLD_DL_SYMENT) == 0 || !entry)
        return -1;
    return static_cast<std::ptrdiff_t>(static_cast<const ElfW(Sym)*>(entry)->st_size / sizeof(void*)) - 2;
}

void expectTable(const char* symbol, const Operations& operations, std::ptrdiff_t first)
{
    EXPECT_EQ(slotsOfTable(symbol), expectSlotsInOrder(operations, first)) << "the table is closed";
}

using Text = std::string;
using Bytes = std::vector<unsigned char>;
using TextPair = std::pair<std::string, std::string>;
using Texts = std::list<std::string>;
using Results = std::list<ObjectProperties*>;

TEST(SlotOrder, OfPropertyIsFixedAndHasNoDestructor)
{
    using P = Property;
    EXPECT_FALSE(std::has_virtual_destructor_v<P>);
    expectTable("_ZTV8Property",
                {operation<void()>("print", &P::print), operation<void(Property*, int)>("print", &P::print),
                 operation<void(int) const>("printJustify", &P::printJustify)},
                0);
}

TEST(SlotOrder, OfObjectPropertiesIsFixed)
{
    using D = ObjectProperties;
    EXPECT_TRUE(std::has_virtual_destructor_v<D>);
    const Operations operations = {
        operation<bool(const int&) const>("beginObject", &D::beginObject),
        operation<void() const>("endObject", &D::endObject),
        operation<std::size_t() const>("childCount", &D::childCount),
        operation<void(const Text&) const>("beginArray", &D::beginArray),
        operation<void() const>("endArray", &D::endArray),
        operation<void(const Text&)>("beginGroup", &D::beginGroup),
        operation<void(const Text&) const>("beginGroup const", &D::beginGroup),
        operation<void() const>("endGroup", &D::endGroup),
        operation<Text() const>("group", &D::group),
        operation<Texts() const>("childKeys", &D::childKeys),
        operation<Texts() const>("childGroups", &D::childGroups),
        operation<Texts() const>("childArrays", &D::childArrays),
        operation<int(const Text&) const>("type of a key", &D::type),
        operation<int() const>("type", &D::type),
        operation<Text() const>("key", &D::key),

        operation<void(const Text&)>("setValueString", &D::setValueString),
        operation<void(const bool&)>("setValueBool", &D::setValueBool),
        operation<void(const int&)>("setValueInt32", &D::setValueInt32),
        operation<void(const long&)>("setValueInt64", &D::setValueInt64),
        operation<void(const int&)>("setValueInt", &D::setValueInt),
        operation<void(const long long&)>("setValueLongLong", &D::setValueLongLong),
        operation<void(const double&)>("setValueDouble", &D::setValueDouble),
        operation<void(const long&)>("setValueTime", &D::setValueTime),
        operation<void(const Text&)>("setValueId", &D::setValueId),
        operation<void(const Bytes&)>("setValueBinary", &D::setValueBinary),
        operation<void(const Text&, const Text&)>("setValueRegex", &D::setValueRegex),

        operation<Text(const Text&) const>("currentValueAsString", &D::currentValueAsString),
        operation<bool(const bool&) const>("currentValueAsBool", &D::currentValueAsBool),
        operation<int(const int&) const>("currentValueAsInt32", &D::currentValueAsInt32),
        operation<long(const long&) const>("currentValueAsInt64", &D::currentValueAsInt64),
        operation<int(const int&) const>("currentValueAsInt", &D::currentValueAsInt),
        operation<long long(const long long&) const>("currentValueAsLongLong", &D::currentValueAsLongLong),
        operation<double(const double&) const>("currentValueAsDouble", &D::currentValueAsDouble),
        operation<long long(const long long&) const>("currentValueAsTime", &D::currentValueAsTime),
        operation<Text(const Text&) const>("currentValueAsId", &D::currentValueAsId),
        operation<Bytes(const Bytes&) const>("currentValueAsBinary", &D::currentValueAsBinary),
        operation<TextPair(const Text&, const Text&) const>("currentValueAsRegex", &D::currentValueAsRegex),

        operation<void(const Text&, const Text&)>("setValueString by key", &D::setValueString),
        operation<void(const Text&, const bool&)>("setValueBool by key", &D::setValueBool),
        operation<void(const Text&, const int&)>("setValueInt32 by key", &D::setValueInt32),
        operation<void(const Text&, const long&)>("setValueInt64 by key", &D::setValueInt64),
        operation<void(const Text&, const int&)>("setValueInt by key", &D::setValueInt),
        operation<void(const Text&, const long long&)>("setValueLongLong by key", &D::setValueLongLong),
        operation<void(const Text&, const double&)>("setValueDouble by key", &D::setValueDouble),
        operation<void(const Text&, const long long&)>("setValueTime by key", &D::setValueTime),
        operation<void(const Text&, const Text&)>("setValueId by key", &D::setValueId),
        operation<void(const Text&, const Bytes&)>("setValueBinary by key", &D::setValueBinary),
        operation<void(const Text&, const Text&, const Text&)>("setValueRegex by key", &D::setValueRegex),

        operation<Text(const Text&, const Text&) const>("valueAsString", &D::valueAsString),
        operation<bool(const Text&, const bool&) const>("valueAsBool", &D::valueAsBool),
        operation<int(const Text&, const int&) const>("valueAsInt32", &D::valueAsInt32),
        operation<long(const Text&, const long&) const>("valueAsInt64", &D::valueAsInt64),
        operation<int(const Text&, const int&) const>("valueAsInt", &D::valueAsInt),
        operation<long long(const Text&, const long long&) const>("valueAsLongLong", &D::valueAsLongLong),
        operation<double(const Text&, const double&) const>("valueAsDouble", &D::valueAsDouble),
        operation<long long(const Text&, const long long&) const>("valueAsTime", &D::valueAsTime),
        operation<Text(const Text&, const Text&) const>("valueAsId", &D::valueAsId),
        operation<Bytes(const Text&, const Bytes&) const>("valueAsBinary", &D::valueAsBinary),
        operation<TextPair(const Text&, const Text&, const Text&) const>("valueAsRegex", &D::valueAsRegex),

        operation<void(const Text&)>("remove by key", &D::remove),
        operation<void(const int&)>("remove by index", &D::remove),
        operation<bool(const Text&) const>("contains", &D::contains),
        operation<bool() const>("isEmpty", &D::isEmpty),
        operation<void(const Text&, const D&)>("include", &D::include),
        operation<void(const Text&, D&)>("exclude", &D::exclude),
        operation<D&(const D&)>("copy assignment", &D::operator=),
        operation<D&(D &&) noexcept>("move assignment", &D::operator=),
    };
    expectTable("_ZTV16ObjectProperties", operations, behindTheDestructor);
}

TEST(SlotOrder, OfObjectFilterIsFixed)
{
    using F = ObjectFilter;
    using Op = OperationType;
    EXPECT_TRUE(std::has_virtual_destructor_v<F>);
    const Operations operations = {
        operation<void()>("start_and", &F::start_and),
        operation<void()>("finish_and", &F::finish_and),
        operation<void()>("start_or", &F::start_or),
        operation<void()>("finish_or", &F::finish_or),
        operation<void(const Text&)>("beginGroup", &F::beginGroup),
        operation<void()>("endGroup", &F::endGroup),
        operation<void(Op, const Text&, const Text&, const Text&)>("setFilterString", &F::setFilterString),
        operation<void(Op, const Text&, const bool&)>("setFilterBool", &F::setFilterBool),
        operation<void(Op, const Text&, const int&)>("setFilterInt", &F::setFilterInt),
        operation<void(Op, const Text&, const double&)>("setFilterDouble", &F::setFilterDouble),
        operation<void(Op, const Text&, const long long&)>("setFilterLongLong", &F::setFilterLongLong),
        operation<void(Op, const Text&, const long long&)>("setFilterTime", &F::setFilterTime),
        operation<void(Op, const Text&, const Text&)>("setFilterId", &F::setFilterId),
        operation<void(const F&)>("include", &F::include),
        operation<void(const Text&, F&)>("exclude", &F::exclude),
        operation<bool() const>("isEmpty", &F::isEmpty),
        operation<ObjectProperties() const>("toObjectProeprties", &F::toObjectProeprties),
        operation<void(const ObjectProperties&)>("fromObjectProperties", &F::fromObjectProperties),
        operation<F&(const F&)>("copy assignment", &F::operator=),
    };
    expectTable("_ZTV12ObjectFilter", operations, behindTheDestructor);
}

TEST(SlotOrder, OfDataBaseClientIsFixed)
{
    using C = DataBaseClient;
    using Document = ObjectProperties;
    EXPECT_TRUE(std::has_virtual_destructor_v<C>);
    const Operations operations = {
        operation<void(const Text&, const Text&, const int&, const Text&, const Text&)>("connect with a login",
                                                                                        &C::connect),
        operation<void(const Text&)>("connect with a connection string", &C::connect),
        operation<void()>("disconnect", &C::disconnect),
        operation<bool() const>("isConnected", &C::isConnected),
        operation<void(const Text&, const Text&, const Document&)>("write", &C::write),
        operation<void(const Text&, const Text&, const Document&, Text&)>("write with an id", &C::write),
        operation<void(const Text&, const Text&, const Document&, const Document&, const UpdateFlag&,
                       const UpdateCommand&)>("update", &C::update),
        operation<void(const Text&, const Text&, const Document&, Results&)>("read", &C::read),
        operation<void(const Text&, const Text&, const Document&, const Document&, Results&, int, int)>("find",
                                                                                                        &C::find),
        operation<void(const Text&, const Text&, const Document&, Results&)>("aggregate", &C::aggregate),
        operation<void(const Text&, const Text&, const Document&)>("remove", &C::remove),
        operation<void(Text&)>("getDatabaseName", &C::getDatabaseName),
        operation<Text() const>("createId", &C::createId),
        operation<void(const Text&, Text, const Text&, const Document&, const Document&)>("addUser", &C::addUser),
        operation<void(const Text&, Text, const Document&, const Document&)>("updateUser", &C::updateUser),
        operation<void(const Text&, Text, const Text&)>("changeUserPassword", &C::changeUserPassword),
        operation<void(const Text&, Text)>("removeUser", &C::removeUser),
        operation<void(const Text&, const Text&, const Text&, std::iostream*)>("readFile", &C::readFile),
        operation<void(const Text&, const Text&, const Text&, const Text&)>("writeFile", &C::writeFile),
        operation<void(const Text&, const Text&, Texts&)>("listFiles", &C::listFiles),
        operation<void(const Text&, const Text&, const Text&)>("removeFile", &C::removeFile),
        operation<void(const Text&, int)>("connect with a host", &C::connect),
        operation<void(const Text&, const Document&, Results&)>("read from a full name", &C::read),
        operation<void(const Text&, const Document&)>("write to a full name", &C::write),
        operation<void(const Text&, const Document&)>("remove from a full name", &C::remove),
    };
    expectTable("_ZTV14DataBaseClient", operations, behindTheDestructor);
}

} // namespace
