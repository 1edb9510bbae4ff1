// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

/// Counts the objects of the driver, and makes one call of it fail. The linker replaces functions of the driver by
/// those of this file (`--wrap`), in the library's object files and in the test.
namespace counted_driver {

/// Number of objects of the driver that were created and not destroyed, clients included.
long liveObjects();

/// While an object exists, the n-th call that can fail, counted from 1, fails as in the driver. It returns null, or
/// sets an error with the message "injected" and the code 7.
class FailingCall
{
public:
    explicit FailingCall(std::size_t number);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    /// True if the n-th call was reached.
    bool happened() const;
};

/// While an object exists, the n-th result of a query, counted from 1, is invalid: a bson_t without bytes.
class BrokenResult
{
public:
    explicit BrokenResult(std::size_t number);
    ~BrokenResult();
    BrokenResult(const BrokenResult&) = delete;
    BrokenResult& operator=(const BrokenResult&) = delete;
};

/// While it exists, each new object id is less than the one before, as after the clock was set back.
class DescendingIds
{
public:
    DescendingIds();
    ~DescendingIds();
    DescendingIds(const DescendingIds&) = delete;
    DescendingIds& operator=(const DescendingIds&) = delete;
};

} // namespace counted_driver
