// Very wide and very deep documents: DATABASE_CLIENT_TEST_SIZE is how wide and how deep.

#include "bson_to_properties.h"
#include "json_to_properties.h"
#include "object_filter.h"
#include "object_properties.h"
#include "owned_bson.h"
#include "properties_to_bson.h"
#include "properties_to_json.h"
#include "small_stack.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

int sizeFromEnvironment()
{
    const char* const text = std::getenv("DATABASE_CLIENT_TEST_SIZE");
    return text ? std::stoi(text) : 100000;
}

// Levels, fields or elements. scripts/soak asks for a million.
const int many = sizeFromEnvironment();

// The stack that threads of Linux programs usually have, whatever this one was started with.
constexpr std::size_t stackSize = std::size_t{8} << 20U;

template <typename Work>
void onAnUsualStack(Work work)
{
    test_support::runWithStack(stackSize, work);
}

// Sends standard output nowhere while it lives.
class SilentOutput
{
public:
    SilentOutput()
    {
        std::fflush(stdout);
        m_output = dup(STDOUT_FILENO);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~SilentOutput()
    {
        std::fflush(stdout);
        dup2(m_output, STDOUT_FILENO);
        close(m_output);
    }
    SilentOutput(const SilentOutput&) = delete;
    SilentOutput& operator=(const SilentOutput&) = delete;

private:
    int m_output = -1;
};

// Groups inside one another, with every second level an array.
void nest(ObjectProperties& document)
{
    for (int level = 0; level < many; level += 2)
    {
        document.beginGroup("g");
        document.beginArray("0");
    }
    document.setValueInt32("0", 42);
}

int depthOf(const ObjectProperties& document)
{
    int depth = 0;
    document.beginGroup("");
    while (document.beginObject(0))
        ++depth;
    EXPECT_EQ(document.currentValueAsInt32(0), 42);
    return depth;
}

TEST(DeepDocument, IsConvertedToBsonAndBackOnAnUsualStack)
{
    onAnUsualStack([] {
        ObjectProperties document;
        nest(document);
        test_support::OwnedBson bson;
        ASSERT_TRUE(PropertiesToBson::convert(document, bson.get()));
        ObjectProperties again;
        ASSERT_TRUE(BsonToProperties::convert(bson.get(), &again));
        EXPECT_EQ(depthOf(again), many + 1);
        test_support::OwnedBson second;
        ASSERT_TRUE(PropertiesToBson::convert(again, second.get()));
        EXPECT_TRUE(bson_equal(bson.get(), second.get()));
    });
}

TEST(DeepDocument, IsCopiedMovedIncludedAndCutOutOnAnUsualStack)
{
    onAnUsualStack([] {
        ObjectProperties document;
        nest(document);
        ObjectProperties copy(document);
        EXPECT_EQ(depthOf(copy), many + 1);
        copy.beginGroup("");
        ObjectProperties target;
        target.include("part", copy);
        copy = ObjectProperties();
        target.exclude("part", copy);
        EXPECT_TRUE(target.isEmpty());
        EXPECT_EQ(depthOf(copy), many + 1);
    });
}

// From a level far below zero, so that no indentation is written: its length would grow with the square of the depth.
TEST(DeepDocument, IsPrintedOnAnUsualStack)
{
    onAnUsualStack([] {
        ObjectProperties document;
        nest(document);
        const SilentOutput silent;
        document.root()->print(document.root().get(), -many - 10);
    });
}

TEST(DeepDocument, IsWrittenAsJsonOnAnUsualStack)
{
    onAnUsualStack([] {
        ObjectProperties document;
        nest(document);
        std::string json;
        EXPECT_TRUE(PropertiesToJson::convert(document, json));
    });
}

TEST(DeepDocument, IsFreedOnAnUsualStackAlsoWhileAnInnerNodeIsHeld)
{
    onAnUsualStack([] {
        auto document = std::make_unique<ObjectProperties>();
        nest(*document);
        const auto held = document->current();
        document.reset();
        EXPECT_EQ(held->childCount(), 1U);
    });
}

TEST(DeepDocument, IsClearedByAValueAtItsTop)
{
    onAnUsualStack([] {
        ObjectProperties document;
        nest(document);
        document.setValueInt32("/g", 1);
        EXPECT_EQ(document.type("/g"), Int32);
    });
}

TEST(DeepText, IsRefusedOrReadAsJsonOnAnUsualStack)
{
    onAnUsualStack([] {
        ObjectProperties document;
        const auto length = static_cast<std::size_t>(many);
        const std::string text = std::string(length, '[') + std::string(length, ']');
        if (!JsonToProperties::convert(text, &document))
        {
            EXPECT_TRUE(document.isEmpty());
        }
    });
}

TEST(DeepPath, IsCreatedAndFoundOnAnUsualStack)
{
    onAnUsualStack([] {
        std::string path;
        for (int level = 0; level < many; ++level)
            path += "/g";
        ObjectProperties document;
        document.setValueInt32(path, 42);
        EXPECT_EQ(document.valueAsInt32(path, 0), 42);
        EXPECT_EQ(depthOf(document), many);
    });
}

TEST(WideDocument, KeepsEveryFieldThroughBsonAndCopy)
{
    ObjectProperties document;
    for (int i = 0; i < many; ++i)
        document.setValueInt32(std::to_string(i), i);
    EXPECT_EQ(document.childCount(), static_cast<std::size_t>(many));
    test_support::OwnedBson bson;
    ASSERT_TRUE(PropertiesToBson::convert(document, bson.get()));
    ObjectProperties again;
    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &again));
    const ObjectProperties copy(again);
    long long sum = 0;
    for (const auto& entry : *copy.root())
        sum += entry.second->currentValueAsInt32(0);
    EXPECT_EQ(sum, static_cast<long long>(many) * (many - 1) / 2);
    const SilentOutput silent;
    copy.printAsJson();
}

TEST(WideDocument, KeepsEveryElementOfAnArray)
{
    ObjectProperties document;
    document.beginArray("list");
    for (int i = 0; i < many; ++i)
        document.setValueInt32("same", i);
    ObjectProperties again;
    test_support::OwnedBson bson;
    ASSERT_TRUE(PropertiesToBson::convert(document, bson.get()));
    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &again));
    again.beginArray("list");
    EXPECT_EQ(again.childCount(), static_cast<std::size_t>(many));
}

TEST(WideFilter, KeepsEveryConditionOfAList)
{
    ObjectFilter filter;
    filter.start_or();
    for (int i = 0; i < many; ++i)
        filter.setFilterInt(OperationTypeGreater, "n", i);
    filter.finish_or();
    const ObjectProperties query = filter.toObjectProeprties();
    query.beginArray("$or");
    EXPECT_EQ(query.childCount(), static_cast<std::size_t>(many));
}

} // namespace
