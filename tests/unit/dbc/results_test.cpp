// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/results.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using dbc::Results;

// Stands in for find(): what it appends is the caller's.
void append(std::list<ObjectProperties*>& results, int count)
{
    for (int number = 0; number < count; ++number)
    {
        auto document = std::make_unique<ObjectProperties>();
        document->setValueInt("n", number);
        results.push_back(document.get());
        static_cast<void>(document.release()); // the list has it now
    }
}

class CountedDocument : public ObjectProperties
{
public:
    using ObjectProperties::operator=;
    explicit CountedDocument(int& live) : m_live(live) { ++m_live; }
    ~CountedDocument() override { --m_live; }

private:
    int& m_live;
};

TEST(Results, DeletesItsDocumentsUnlikeAPlainList)
{
    int live = 0;
    {
        std::list<ObjectProperties*> plain;
        plain.push_back(new CountedDocument(live));
        const std::unique_ptr<ObjectProperties> mended(plain.front());
        plain.clear();
        ASSERT_EQ(live, 1) << "the trap: a plain list forgets its documents";
    }
    {
        Results results;
        std::list<ObjectProperties*>& list = results;
        list.push_back(new CountedDocument(live));
        EXPECT_EQ(live, 1);
    }
    EXPECT_EQ(live, 0);
}

TEST(Results, ConvertsToAListAndKeepsItsDocuments)
{
    Results results;
    append(results, 2);
    append(results, 1);
    EXPECT_EQ(results.size(), 3U);
    EXPECT_EQ(results.front().valueAsInt("n", -1), 0);
    EXPECT_EQ(results.back().valueAsInt("n", -1), 0);
}

TEST(Results, IsIteratedInOrderAsDocuments)
{
    Results results;
    append(results, 3);
    int expected = 0;
    for (const ObjectProperties& document : std::as_const(results))
        EXPECT_EQ(document.valueAsInt("n", -1), expected++);
    EXPECT_EQ(expected, 3);
    const auto second = std::find_if(results.begin(), results.end(), [](const ObjectProperties& document) {
        return document.valueAsInt("n", -1) == 1;
    });
    ASSERT_NE(second, results.end());
    EXPECT_EQ(second->valueAsInt("n", -1), 1);
}

TEST(Results, IteratorConvertsToAConstIterator)
{
    EXPECT_TRUE((std::is_convertible_v<Results::iterator, Results::const_iterator>));
    EXPECT_FALSE((std::is_convertible_v<Results::const_iterator, Results::iterator>));
}

TEST(Results, TakeFrontMovesTheFirstDocumentOut)
{
    Results results;
    append(results, 2);
    const auto first = results.takeFront();
    const auto second = results.takeFront();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->valueAsInt("n", -1), 0);
    EXPECT_EQ(second->valueAsInt("n", -1), 1);
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(results.takeFront(), nullptr);
}

TEST(Results, MoveAssignmentDeletesTheDocumentsBefore)
{
    int live = 0;
    Results target;
    static_cast<std::list<ObjectProperties*>&>(target).push_back(new CountedDocument(live));
    Results source;
    append(source, 2);

    target = std::move(source);

    EXPECT_EQ(live, 0);
    EXPECT_EQ(target.size(), 2U);
    const Results last(std::move(target));
    EXPECT_EQ(last.size(), 2U);
}

} // namespace
