// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/errors.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace dbc {
namespace {

std::string errorText(const std::string& message, const ErrorDetails& details)
{
    std::string text = message;
    if (!details.text.empty())
        text.append(": ").append(details.text);
    if (details.code != 0)
        text.append("(code: ").append(std::to_string(details.code)).append(")");
    return text;
}

} // namespace

ServerError::ServerError(const std::string& message, ErrorDetails details)
    : std::runtime_error(errorText(message, details)), m_details(std::make_shared<ErrorDetails>(std::move(details)))
{}

ServerError::ServerError(const ServerError& other) noexcept = default;

ServerError& ServerError::operator=(const ServerError& other) noexcept = default;

ServerError::~ServerError() = default;

int ServerError::code() const noexcept { return m_details->code; }

const std::string& ServerError::codeName() const noexcept { return m_details->codeName; }

ErrorKind ServerError::kind() const noexcept { return m_details->kind; }

const std::vector<std::string>& ServerError::labels() const noexcept { return m_details->labels; }

bool ServerError::hasLabel(const std::string& label) const noexcept
{
    const auto& all = m_details->labels;
    return std::find(all.begin(), all.end(), label) != all.end();
}

bool ServerError::mayRetry() const noexcept { return m_details->mayRetry; }

const ErrorDetails& ServerError::details() const noexcept { return *m_details; }

} // namespace dbc
