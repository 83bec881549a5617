#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "control/ControlRow.h"
#include "unit/NameList.h"
#include "unit/UnitError.h"

namespace headunit {

// What handlers read from the words of a user. Any thread.

std::optional<int> wholeNumber(const std::string& text);

/// Digits with a sign and a point, nothing else.
std::optional<double> decimalNumber(const std::string& text);

/// The bytes of an even number of hexadecimal digits, at least two.
std::optional<std::string> hexBytes(const std::string& text);

// The following throw UnitError, which tells what the word should have been.

bool onOrOff(const std::string& text);

/// How late something may be ordered to be, in whole milliseconds: up to ten minutes.
std::chrono::milliseconds lateness(const std::string& text);

/// A manager's result: any number of 32 bits.
int managerResult(const std::string& text);

/// How many times something is ordered to happen, which the second of the arguments says: up to a
/// million, 0 to take an order back, 1 when there is no second one. `things` is what happens so often:
/// "requests".
unsigned timesIn(const ControlArguments& arguments, const char* things);

/// A name and what it stands for.
template <typename Value>
using Choice = std::pair<std::string_view, Value>;

/// What the text stands for among these choices.
template <typename Value, std::size_t count>
Value chosen(const Choice<Value> (&choices)[count], const std::string& text) {
    const auto* const choice = std::find_if(std::begin(choices), std::end(choices),
                                            [&](const auto& known) { return known.first == text; });
    if (choice != std::end(choices))
        return choice->second;
    std::vector<std::string_view> names;
    for (const auto& [name, value] : choices)
        names.push_back(name);
    throw notOneOf(names, text);
}

} // namespace headunit
