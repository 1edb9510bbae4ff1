// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

/// The driver with its objects counted, and one call made to fail. The linker puts these functions in the place of the
/// driver's own (`--wrap`), in the library's objects and in the test alike.
namespace counted_driver {

/// Objects of the driver that were made and not destroyed, clients included.
long liveObjects();

/// While this object lives, the n-th call that can fail, counted from 1, does so: with no object, or with an error
/// record of the text "injected" and the code 7, as the driver does it.
class FailingCall
{
public:
    explicit FailingCall(std::size_t number);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    /// Whether that call was reached.
    bool happened() const;
};

/// While this object lives, the n-th result of a query, counted from 1, has no bytes, not even those of an empty
/// document.
class BrokenResult
{
public:
    explicit BrokenResult(std::size_t number);
    ~BrokenResult();
    BrokenResult(const BrokenResult&) = delete;
    BrokenResult& operator=(const BrokenResult&) = delete;
};

} // namespace counted_driver
