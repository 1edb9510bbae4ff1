// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "environment.h"

#include <cstddef>
#include <stdexcept>

#include <pthread.h>

/// Levels, fields or elements. scripts/soak asks for a million.
inline int many()
{
    return static_cast<int>(test_support::environmentNumber("DATABASE_CLIENT_TEST_SIZE", 100000));
}

/// Runs @p work to its end in a thread with a stack of 256 KiB, which a recursion soon exhausts: that ends the process.
template <typename Work>
void runOnSmallStack(Work work)
{
    constexpr std::size_t bytes = 256U << 10U;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        (*static_cast<Work*>(argument))();
        return nullptr;
    };
    const bool started =
        pthread_attr_setstacksize(&attributes, bytes) == 0 && pthread_create(&thread, &attributes, run, &work) == 0;
    pthread_attr_destroy(&attributes);
    if (!started)
        throw std::runtime_error("no thread with a stack of this size");
    pthread_join(thread, nullptr);
}
