// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Each allocation of an operation fails, one per run. The document is unchanged afterwards.

#include "allocation_failure.h"
#include "object_properties.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace {

using test_support::failEveryAllocation;

const std::string longText = "a text that is long enough for the heap";
const std::string longKey = "a key that is long enough for the heap";

ObjectProperties sample()
{
    ObjectProperties document;
    document.setValueString("a", longText);
    document.setValueInt32("b/c", 1);
    document.beginGroup("b");
    return document;
}

void expectMembers(const ObjectProperties& document)
{
    EXPECT_EQ(document.group(), "b");
    EXPECT_EQ(document.type("/a"), static_cast<int>(String));
    EXPECT_EQ(document.valueAsString("/a", ""), longText);
    EXPECT_EQ(document.valueAsInt32("/b/c", 0), 1);
}

void expectUntouched(const ObjectProperties& document)
{
    expectMembers(document);
    EXPECT_EQ(document.childCount(), 1U);
    EXPECT_EQ(document.root()->childCount(), 2U);
}

ObjectProperties other()
{
    ObjectProperties document;
    document.setValueRegex("r", longText, longText);
    document.setValueBinary("s/t", std::vector<unsigned char>(100));
    document.setValueId("s/" + longKey, longText);
    return document;
}

TEST(DocumentWithoutMemory, IsNotConstructed)
{
    const std::size_t failures = failEveryAllocation([] { return 0; }, [](int) { ObjectProperties(); }, [](int) {});
    EXPECT_EQ(failures, 2U);
}

TEST(DocumentWithoutMemory, IsNotCopied)
{
    const ObjectProperties source = other();
    const std::size_t failures =
        failEveryAllocation([] { return 0; }, [&](int) { ObjectProperties{source}; }, [](int) {});
    EXPECT_GT(failures, 10U);
}

TEST(DocumentWithoutMemory, KeepsItsContentAndCursorWhenAssignedTo)
{
    const ObjectProperties source = other();
    const std::size_t failures = failEveryAllocation(
        sample, [&](ObjectProperties& document) { document = source; }, expectUntouched);
    EXPECT_GT(failures, 10U);
}

TEST(DocumentWithoutMemory, KeepsTheMembersOfAGroupWhenAnotherDocumentIsIncluded)
{
    const ObjectProperties source = other();
    const std::size_t failures = failEveryAllocation(
        sample, [&](ObjectProperties& document) { document.include("/b", source); }, expectUntouched);
    EXPECT_GT(failures, 10U);
}

TEST(DocumentWithoutMemory, KeepsItsMembersWhenAnotherDocumentIsIncludedUnderANewKey)
{
    const ObjectProperties source = other();
    const std::size_t failures = failEveryAllocation(
        sample, [&](ObjectProperties& document) { document.include("/new/" + longKey, source); },
        [](const ObjectProperties& document) {
            expectMembers(document);
            EXPECT_EQ(document.childCount(), 1U);
        });
    EXPECT_GT(failures, 0U);
}

TEST(DocumentWithoutMemory, KeepsItsMembersWhenItIncludesItself)
{
    const std::size_t failures = failEveryAllocation(
        sample, [](ObjectProperties& document) { document.include("/b", document); }, expectUntouched);
    EXPECT_GT(failures, 0U);
}

TEST(DocumentWithoutMemory, LeavesBothDocumentsWhenASubtreeIsExcluded)
{
    using Documents = std::pair<ObjectProperties, ObjectProperties>;
    const std::size_t failures =
        failEveryAllocation([] { return Documents(sample(), sample()); },
                            [](Documents& documents) { documents.first.exclude("/b", documents.second); },
                            [](const Documents& documents) {
                                expectUntouched(documents.first);
                                expectUntouched(documents.second);
                            });
    EXPECT_GT(failures, 0U);
}

TEST(DocumentWithoutMemory, LeavesTheDocumentWhenItIsReducedToASubtree)
{
    const std::size_t failures = failEveryAllocation(
        sample, [](ObjectProperties& document) { document.exclude("/b", document); }, expectUntouched);
    EXPECT_GT(failures, 0U);
}

TEST(DocumentWithoutMemory, KeepsTheCursorWhenAGroupOrArrayCannotBeMade)
{
    using Work = std::function<void(ObjectProperties&)>;
    const Work works[] = {[](ObjectProperties& document) { document.beginGroup(longKey); },
                          [](ObjectProperties& document) { document.beginArray(longKey); },
                          [](ObjectProperties& document) { document.beginGroup("/" + longKey); },
                          [](ObjectProperties& document) { document.beginArray("/" + longKey); }};
    for (const Work& work : works)
        EXPECT_GE(failEveryAllocation(sample, work, expectUntouched), 3U);
}

TEST(DocumentWithoutMemory, KeepsTheValueAtTheCursor)
{
    const auto onTheText = [] {
        ObjectProperties document = sample();
        document.beginGroup("/a");
        return document;
    };
    const auto expectText = [](const ObjectProperties& document) {
        EXPECT_EQ(document.currentValueAsString(""), longText);
    };
    using Work = std::function<void(ObjectProperties&)>;
    const Work works[] = {
        [](ObjectProperties& document) { document.setValueString(longKey); },
        [](ObjectProperties& document) { document.setValueId(longKey); },
        [](ObjectProperties& document) { document.setValueBinary(std::vector<unsigned char>(100)); },
        [](ObjectProperties& document) { document.setValueRegex(longKey, longKey); },
    };
    for (const Work& work : works)
        EXPECT_GE(failEveryAllocation(onTheText, work, expectText), 1U);
}

} // namespace
