// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "operation.h"

#include <algorithm>
#include <array>
#include <limits>
#include <sstream>

namespace {

template <typename Values>
const auto& pick(std::mt19937_64& random, const Values& values)
{
    return values[random() % values.size()];
}

// Few names, so that operations meet; lists of digits, so that text order and number order differ.
std::string randomKey(std::mt19937_64& random)
{
    static const std::array<const char*, 10> segments{"a", "b", "c", "a", "b", "10", "2", "$and", "$or", ""};
    const auto count = std::array<int, 8>{0, 1, 1, 1, 1, 2, 2, 3}[random() % 8];
    std::string key = random() % 5 == 0 ? "/" : "";
    for (int i = 0; i < count; ++i)
    {
        if (i > 0)
            key += random() % 8 == 0 ? "//" : "/";
        key += pick(random, segments);
    }
    return random() % 12 == 0 ? key + "/" : key;
}

std::string randomText(std::mt19937_64& random)
{
    static const std::array<std::string, 7> texts{"",
                                                  "x",
                                                  "507f1f77bcf86cd799439011",
                                                  std::string("ab\0cd", 5),
                                                  "a \"quoted\" text, longer than any small buffer would be",
                                                  "\xc3\xa4\xff",
                                                  "i"};
    return pick(random, texts);
}

} // namespace

Operation randomOperation(std::mt19937_64& random, std::size_t kinds, std::size_t subjects)
{
    static const std::array<long, 6> numbers{
        0, 1, -1, 42, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()};
    static const std::array<double, 6> reals{
        0.0, -0.0, 1.5, -1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    Operation operation;
    operation.kind = random() % kinds;
    operation.subject = random() % subjects;
    operation.other = random() % subjects;
    operation.target = random() % subjects;
    operation.key = randomKey(random);
    operation.text = randomText(random);
    operation.options = randomText(random);
    operation.number = pick(random, numbers);
    operation.real = pick(random, reals);
    operation.index = static_cast<int>(random() % 6) - 1;
    return operation;
}

std::string describe(const std::string& name, const Operation& operation)
{
    std::ostringstream text;
    text << name << "  subject " << operation.subject << ", other " << operation.other << ", target "
         << operation.target << ", key \"" << operation.key << "\", text \"" << operation.text << "\", options \""
         << operation.options << "\", number " << operation.number << ", real " << operation.real << ", index "
         << operation.index;
    return text.str();
}

std::vector<Operation> shrink(const System& system, std::vector<Operation> sequence)
{
    const auto differs = [&system](const std::vector<Operation>& candidate) {
        return system.run(candidate).has_value();
    };
    if (const auto difference = system.run(sequence))
        sequence.resize(difference->step + 1);
    for (std::size_t part = std::max<std::size_t>(sequence.size() / 2, 1);;)
    {
        bool shorter = false;
        for (std::size_t begin = 0; begin < sequence.size();)
        {
            auto candidate = sequence;
            const auto first = candidate.begin() + static_cast<std::ptrdiff_t>(begin);
            candidate.erase(first, first + static_cast<std::ptrdiff_t>(std::min(part, sequence.size() - begin)));
            if (differs(candidate))
            {
                sequence = candidate;
                shorter = true;
            }
            else
                begin += part;
        }
        if (part > 1)
            part /= 2;
        else if (!shorter)
            return sequence;
    }
}
