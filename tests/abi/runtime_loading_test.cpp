// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A program that knows nothing but the public headers: it is not linked with the library, loads it by its path, takes
// the three factories and works through the virtual operations alone.

#include "database_client.h"
#include "factories.h"
#include "object_filter.h"
#include "object_properties.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <dlfcn.h>

namespace {

using test_support::thrownText;

// Never unloaded: the driver is ended at exit, by code of the library.
void* library()
{
    static void* const handle = dlopen(DATABASE_CLIENT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return handle;
}

template <typename Object>
std::unique_ptr<Object> create(const char* factory)
{
    const auto make = reinterpret_cast<Object* (*)()>(dlsym(library(), factory));
    return std::unique_ptr<Object>(make ? make() : nullptr);
}

class LoadedLibrary : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(library(), nullptr) << dlerror();
        document = create<ObjectProperties>("createObjectProperties");
        filter = create<ObjectFilter>("createObjectFilter");
        client = create<DataBaseClient>("createDataBaseClient");
        ASSERT_TRUE(document && filter && client) << dlerror();
    }

    std::unique_ptr<ObjectProperties> document;
    std::unique_ptr<ObjectFilter> filter;
    std::unique_ptr<DataBaseClient> client;
};

const std::string notConnected = "invalid_argument: Connection is not established. Run connect before";

TEST_F(LoadedLibrary, EveryFactoryCallReturnsANewObject)
{
    EXPECT_NE(document, create<ObjectProperties>("createObjectProperties"));
    EXPECT_NE(filter, create<ObjectFilter>("createObjectFilter"));
    EXPECT_NE(client, create<DataBaseClient>("createDataBaseClient"));
}

TEST_F(LoadedLibrary, ADocumentIsFilledAndReadAtTheCursor)
{
    document->beginGroup("person");
    document->setValueString("name", "Ada");
    document->setValueBool("active", true);
    document->setValueInt("age", 36);
    document->setValueInt32("visits", 3);
    document->setValueInt64("steps", 5000000000L);
    document->setValueLongLong("views", 6000000000LL);
    document->setValueDouble("height", 1.65);
    document->setValueTime("born", -4854556800000LL);
    document->setValueId("id", "507f1f77bcf86cd799439011");
    document->setValueBinary("picture", {1, 2, 3});
    document->setValueRegex("like", "^A", "i");
    document->beginArray("numbers");
    for (int number = 0; number < 3; ++number)
        document->setValueInt("n", number);
    document->endArray();
    document->endGroup();

    EXPECT_EQ(document->childGroups(), std::list<std::string>{"person"});
    document->beginGroup("person");
    EXPECT_EQ(document->childCount(), 12U);
    EXPECT_EQ(document->childArrays(), std::list<std::string>{"numbers"});
    EXPECT_EQ(document->childKeys().size(), 11U);
    EXPECT_EQ(document->valueAsString("name", ""), "Ada");
    EXPECT_TRUE(document->valueAsBool("active", false));
    EXPECT_EQ(document->valueAsInt("age", 0), 36);
    EXPECT_EQ(document->valueAsInt32("visits", 0), 3);
    EXPECT_EQ(document->valueAsInt64("steps", 0), 5000000000L);
    EXPECT_EQ(document->valueAsLongLong("views", 0), 6000000000LL);
    EXPECT_EQ(document->valueAsDouble("height", 0), 1.65);
    EXPECT_EQ(document->valueAsTime("born", 0), -4854556800000LL);
    EXPECT_EQ(document->valueAsId("id", ""), "507f1f77bcf86cd799439011");
    EXPECT_EQ(document->valueAsBinary("picture", {}), (std::vector<unsigned char>{1, 2, 3}));
    EXPECT_EQ(document->valueAsRegex("like", "", "").second, "i");
    document->beginArray("numbers");
    for (int index = 0; document->beginObject(index); ++index)
    {
        EXPECT_EQ(document->currentValueAsInt(-1), index);
        document->endObject();
    }
    EXPECT_EQ(document->group(), "numbers");
}

TEST_F(LoadedLibrary, DocumentsAreAssignedIncludedExcludedAndCut)
{
    const auto other = create<ObjectProperties>("createObjectProperties");
    document->setValueInt("a", 1);
    other->setValueInt("b", 2);

    document->include("other", *other);
    *other = *document;
    EXPECT_EQ(other->valueAsInt("other/b", 0), 2);
    document->exclude("other", *other);
    EXPECT_EQ(other->valueAsInt("b", 0), 2);
    EXPECT_FALSE(document->contains("other"));
    document->remove("a");
    other->remove(0);

    EXPECT_TRUE(document->isEmpty());
    EXPECT_TRUE(other->isEmpty());
    other->setValueInt("moved", 3);
    *document = std::move(*other);
    EXPECT_EQ(document->valueAsInt("moved", 0), 3);
}

TEST_F(LoadedLibrary, AFilterIsBuiltAndReturnsItsQuery)
{
    const auto copy = create<ObjectFilter>("createObjectFilter");
    filter->start_or();
    filter->setFilterString(OperationTypeRegex, "name", "^A", "i");
    filter->setFilterInt(OperationTypeGreater, "age", 18);
    filter->finish_or();
    filter->setFilterBool(OperationTypeEqual, "active", true);
    filter->setFilterDouble(OperationTypeLess, "height", 2);
    filter->setFilterLongLong(OperationTypeNotEqual, "views", 0);
    filter->setFilterTime(OperationTypeGreaterOrEqual, "born", 0);
    filter->setFilterId(OperationTypeEqual, "id", "507f1f77bcf86cd799439011");
    *copy = *filter;

    // The result goes straight into memory of the caller: its destructor, too, is called through the table.
    const std::unique_ptr<ObjectProperties> query(new ObjectProperties(copy->toObjectProeprties()));

    EXPECT_FALSE(filter->isEmpty());
    EXPECT_EQ(query->childArrays(), std::list<std::string>{"$or"});
    EXPECT_EQ(query->valueAsInt64("views/$ne", 1), 0);
    EXPECT_EQ(query->type("born/$gte"), static_cast<int>(Time));
    query->beginArray("$or");
    EXPECT_EQ(query->childCount(), 2U);
}

TEST_F(LoadedLibrary, AClientThatIsNotConnectedRefusesEveryOperation)
{
    using Work = std::function<void()>;
    std::list<ObjectProperties*> results;
    std::list<std::string> names;
    std::stringstream stream;
    std::string id;
    const ObjectProperties& d = *document;
    const Work works[] = {
        [&] { client->write("db", "c", d); },
        [&] { client->write("db", "c", d, id); },
        [&] { client->write("db.c", d); },
        [&] { client->update("db", "c", d, d, UpdateFlagNone, UpdateCommandSet); },
        [&] { client->read("db", "c", d, results); },
        [&] { client->read("db.c", d, results); },
        [&] { client->find("db", "c", d, d, results, 0, 0); },
        [&] { client->aggregate("db", "c", d, results); },
        [&] { client->remove("db", "c", d); },
        [&] { client->remove("db.c", d); },
        [&] { client->addUser("db", "user", "password", d, d); },
        [&] { client->updateUser("db", "user", d, d); },
        [&] { client->changeUserPassword("db", "user", "password"); },
        [&] { client->removeUser("db", "user"); },
        [&] { client->readFile("db", "fs", "file", &stream); },
        [&] { client->writeFile("db", "fs", "file", "path"); },
        [&] { client->listFiles("db", "fs", names); },
        [&] { client->removeFile("db", "fs", "file"); },
    };
    for (const Work& work : works)
        EXPECT_EQ(thrownText(work), notConnected);
    EXPECT_TRUE(results.empty());
}

TEST_F(LoadedLibrary, AClientConnectsAnswersAndDisconnects)
{
    std::string name;
    EXPECT_FALSE(client->isConnected());
    EXPECT_EQ(client->createId().size(), 24U);

    client->connect("mongodb://localhost:1/name");
    EXPECT_TRUE(client->isConnected());
    client->getDatabaseName(name);
    EXPECT_EQ(name, "name");
    client->connect("other", "localhost", 1, "", "");
    client->getDatabaseName(name);
    EXPECT_EQ(name, "other");
    client->connect("localhost", 1);
    client->getDatabaseName(name);
    EXPECT_EQ(name, "");

    EXPECT_EQ(thrownText([&] { client->write("", "c", *document); }), "invalid_argument: Database name is empty");
    EXPECT_EQ(thrownText([&] { client->connect("no connection string"); }), "runtime_error: Connection failed");
    EXPECT_FALSE(client->isConnected());
    client->disconnect();
}

} // namespace
