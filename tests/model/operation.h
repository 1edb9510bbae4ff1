// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model_tree.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

/// One step of a sequence. Every step can be taken in every state, so that any part of a sequence is a sequence too:
/// that is what makes shrinking possible.
struct Operation
{
    std::size_t kind = 0; // index into the table of the system
    std::size_t subject = 0;
    std::size_t other = 0;
    std::size_t target = 0;
    std::string key;
    std::string text;
    std::string options;
    long number = 0;
    double real = 0;
    int index = 0;
};

std::string describe(const std::string& name, const Operation& operation);
Operation randomOperation(std::mt19937_64& random, std::size_t kinds, std::size_t subjects);

/// The first difference between library and model.
struct Difference
{
    std::size_t step = 0;
    std::string text;
};

/// A library class beside its model: the names of its operations, and how to run a sequence of them.
struct System
{
    std::string name;
    std::vector<std::string> operations;
    std::size_t subjects;
    std::function<std::optional<Difference>(const std::vector<Operation>&)> run;
};

System propertySystem();
System documentSystem();
System filterSystem();

/// The shortest sequence found, by leaving out ever smaller parts, that still shows a difference.
std::vector<Operation> shrink(const System& system, std::vector<Operation> sequence);
