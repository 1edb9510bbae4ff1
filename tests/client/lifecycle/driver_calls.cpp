// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "driver_calls.h"

#include <mongoc/mongoc.h>

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<int> started{0};
std::atomic<int> ended{0};
std::atomic<int> made{0};
std::atomic<int> dropped{0};
std::atomic<int> alive{0};
int expectedStarts = 0;
int expectedClients = 0;

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "%s: %d starts, %d ends, %d clients made, %d dropped\n", what, started.load(), ended.load(),
                 made.load(), dropped.load());
    std::fflush(stderr);
    _exit(1);
}

template <typename Function>
Function* original(const char* name)
{
    void* const found = dlsym(RTLD_NEXT, name);
    if (!found)
        fail("the driver's own function is missing");
    return reinterpret_cast<Function*>(found);
}

// Runs after the destructors of every static object, the library's included.
__attribute__((destructor)) void check()
{
    if (started != expectedStarts)
        fail("the driver was not started as often as it should be");
    if (ended != started)
        fail("the driver was not cleaned up");
    if (made != expectedClients || dropped != made)
        fail("a client was left, or one too many was made");
}

} // namespace

namespace driver_calls {

void expect(int starts, int clients)
{
    started = 0;
    expectedStarts = starts;
    expectedClients = clients;
}

int starts()
{
    return started;
}

int liveClients()
{
    return alive;
}

} // namespace driver_calls

extern "C"
{
    void mongoc_init(void)
    {
        ++started;
        original<void()>("mongoc_init")();
    }

    void mongoc_cleanup(void)
    {
        if (alive != 0)
            fail("the driver was cleaned up under a client");
        ++ended;
        original<void()>("mongoc_cleanup")();
    }

    mongoc_client_t* mongoc_client_new_from_uri_with_error(const mongoc_uri_t* uri, bson_error_t* error)
    {
        mongoc_client_t* const client = original<mongoc_client_t*(const mongoc_uri_t*, bson_error_t*)>(
            "mongoc_client_new_from_uri_with_error")(uri, error);
        if (client)
        {
            ++made;
            ++alive;
        }
        return client;
    }

    void mongoc_client_destroy(mongoc_client_t* client)
    {
        original<void(mongoc_client_t*)>("mongoc_client_destroy")(client);
        if (client)
        {
            ++dropped;
            --alive;
        }
    }

} // extern "C"
