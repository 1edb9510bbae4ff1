// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <stdexcept>

#include <pthread.h>

namespace test_support {

/// Runs @p work in a thread with a stack of this number of bytes. A stack overflow ends the process.
template <typename Work>
void runWithStack(std::size_t bytes, Work work)
{
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

} // namespace test_support
