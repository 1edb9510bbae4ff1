// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "factories.h"
#include "query_bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

using query::Bytes;
using query::expected;

namespace {

Bytes orList(const std::vector<int>& values)
{
    std::vector<Bytes> elements;
    elements.reserve(values.size());
    for (const int value : values)
        elements.push_back(query::group("$or", {query::int32("k", value)}));
    return query::list("$or", elements);
}

void add(ObjectFilter& filter, int value)
{
    filter.setFilterInt(OperationTypeEqual, "k", value);
}

TEST(FilterCopies, AreIndependentWithoutOpenLists)
{
    ObjectFilter source;
    add(source, 1);

    ObjectFilter copy(source);
    copy.setFilterInt(OperationTypeEqual, "copy", 2);
    source.setFilterInt(OperationTypeEqual, "source", 3);

    EXPECT_EQ(query::of(source), expected({query::int32("k", 1), query::int32("source", 3)}));
    EXPECT_EQ(query::of(copy), expected({query::int32("copy", 2), query::int32("k", 1)}));
}

TEST(FilterCopies, ContinueInTheOpenList)
{
    ObjectFilter source;
    source.start_or();
    add(source, 1);

    ObjectFilter copy(source);
    add(copy, 2);
    copy.finish_or();
    add(copy, 3);

    EXPECT_EQ(query::of(copy), expected({orList({1, 2}), query::int32("k", 3)}));
    EXPECT_EQ(query::of(source), expected({orList({1})}));
}

TEST(FilterCopies, DoNotCloseTheListsOfTheSource)
{
    ObjectFilter source;
    source.start_or();
    add(source, 1);
    ObjectFilter copy(source);

    copy.finish_or();
    copy.setFilterInt(OperationTypeEqual, "copy", 9);
    add(source, 2);
    source.finish_or();
    source.setFilterInt(OperationTypeEqual, "source", 8);

    EXPECT_EQ(query::of(source), expected({orList({1, 2}), query::int32("source", 8)}));
    EXPECT_EQ(query::of(copy), expected({orList({1}), query::int32("copy", 9)}));
}

TEST(FilterCopies, MadeByAssignmentContinueInTheOpenList)
{
    ObjectFilter source;
    source.start_or();
    add(source, 1);
    ObjectFilter copy;
    copy.start_and();
    copy.start_and();
    copy.setFilterInt(OperationTypeEqual, "old", 7);

    ObjectFilter& result = copy = source;
    add(copy, 2);
    copy.finish_or();
    add(copy, 3);

    EXPECT_EQ(&result, &copy);
    EXPECT_EQ(query::of(copy), expected({orList({1, 2}), query::int32("k", 3)}));
    EXPECT_EQ(query::of(source), expected({orList({1})}));
}

TEST(FilterCopies, CloseTheirListsIfTheSourceHasNoOpenList)
{
    ObjectFilter source;
    add(source, 1);
    ObjectFilter copy;
    copy.start_or();

    copy = source;
    copy.setFilterInt(OperationTypeEqual, "z", 2);

    EXPECT_EQ(query::of(copy), expected({query::int32("k", 1), query::int32("z", 2)}));
}

// A copied document stands at its root; only open lists call for more.
TEST(FilterCopies, ContinueAtTheTopLevelWithoutOpenLists)
{
    ObjectFilter source;
    source.beginGroup("sub");

    ObjectFilter copy(source);
    add(copy, 1);

    EXPECT_EQ(query::of(copy), expected({query::int32("k", 1), query::group("sub", {})}));
}

TEST(FilterCopies, OfAFilterOntoItselfChangeNothing)
{
    ObjectFilter filter;
    filter.start_or();
    add(filter, 1);

    const ObjectFilter& self = filter;
    filter = self;
    add(filter, 2);
    filter.finish_or();

    EXPECT_EQ(query::of(filter), expected({orList({1, 2})}));
}

TEST(FilterCopies, OutliveTheirSource)
{
    ObjectFilter copy;
    {
        ObjectFilter source;
        source.start_or();
        add(source, 1);
        copy = source;
    }
    add(copy, 2);

    EXPECT_EQ(query::of(copy), expected({orList({1, 2})}));
}

TEST(FilterCopies, OfAQueryInADocumentAreIndependent)
{
    ObjectFilter filter;
    filter.start_or();
    add(filter, 1);

    ObjectProperties document = filter.toObjectProeprties();
    document.setValueInt32("extra", 1);
    add(filter, 2);

    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(query::of(document), expected({orList({1}), query::int32("extra", 1)}));
    EXPECT_EQ(query::of(filter), expected({orList({1, 2})}));
}

TEST(FilterCopies, TakeOverTheQueryOfADocument)
{
    ObjectProperties document;
    document.setValueInt32("a/b", 1);
    document.beginGroup("a");
    ObjectFilter filter;
    add(filter, 1);

    filter.fromObjectProperties(document);
    filter.setFilterInt(OperationTypeEqual, "z", 2);
    document.setValueInt32("b", 9);

    EXPECT_EQ(query::of(filter), expected({query::group("a", {query::int32("b", 1)}), query::int32("z", 2)}));
}

TEST(FilterCopies, OfADocumentKeepTheCountOfOpenLists)
{
    ObjectFilter filter;
    filter.start_or();
    filter.start_and();

    filter.fromObjectProperties(ObjectProperties());
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    // The innermost list is still "$and": without its array the element is a group of that name.
    EXPECT_EQ(query::of(filter), expected({query::group("$and", {query::int32("a", 1)})}));

    filter.finish_and();
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    EXPECT_EQ(query::of(filter), expected({query::group("$and", {query::int32("a", 1)}), query::int32("b", 2)}));
}

TEST(FilterCopies, WorkIfTheListOfTheCursorWasRemoved)
{
    ObjectFilter filter;
    filter.start_or();
    filter.start_and();
    filter.setFilterInt(OperationTypeEqual, "/$or", 1); // drops both lists

    ObjectFilter copy(filter);
    copy.finish_and();
    copy.finish_or();
    copy.setFilterInt(OperationTypeEqual, "z", 2);

    EXPECT_EQ(query::of(copy), expected({query::int32("$or", 1), query::int32("z", 2)}));
}

// One of the calls that build a filter. Groups are opened inside lists only, where a copy stands in them too.
void randomCall(ObjectFilter& filter, std::mt19937& random, std::vector<char>& open)
{
    const auto pick = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    const std::string key(1, static_cast<char>('a' + pick(5)));
    switch (pick(8))
    {
    case 0:
        open.push_back('l');
        return filter.start_and();
    case 1:
        open.push_back('l');
        return filter.start_or();
    case 2:
        if (open.empty())
            return;
        open.push_back('g');
        return filter.beginGroup(key);
    case 3:
    case 4:
        if (open.empty())
            return filter.finish_and();
        if (open.back() == 'g')
            filter.endGroup();
        else
            filter.finish_or();
        return open.pop_back();
    default:
        return filter.setFilterInt(static_cast<OperationType>(pick(11)), key, pick(100));
    }
}

TEST(FilterCopies, HaveTheQueryOfTheirSourceAtEveryStep)
{
    for (unsigned seed = 0; seed < 500; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::vector<char> open;
        ObjectFilter source;
        for (auto calls = random() % 40; calls > 0; --calls)
            randomCall(source, random, open);
        const query::Query taken = query::of(source);

        ObjectFilter copy(source);
        std::mt19937 randomOfCopy = random;
        std::vector<char> openInCopy = open;
        for (int calls = 0; calls < 20; ++calls)
            randomCall(source, random, open);
        ASSERT_EQ(query::of(copy), taken);

        for (int calls = 0; calls < 20; ++calls)
            randomCall(copy, randomOfCopy, openInCopy);
        ASSERT_EQ(query::of(copy), query::of(source));
    }
}

TEST(FilterFactory, ReturnsAnEmptyFilterThatTheCallerDeletes)
{
    const std::unique_ptr<ObjectFilter> filter(createObjectFilter());
    ASSERT_TRUE(filter);
    EXPECT_TRUE(filter->isEmpty());

    filter->setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(query::of(*filter), query::expected({query::int32("a", 1)}));
}

} // namespace
