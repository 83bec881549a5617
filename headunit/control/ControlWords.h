#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "control/ControlCommands.h"

namespace headunit {

constexpr char kNoResult[] = "a result: a whole number of 32 bits";

/// What control commands read from their words and answer to unusable ones. Any thread.

ControlCommands::Answer refused(const std::string& why);

/// "'VALUE' is not WANTED".
ControlCommands::Answer refusedValue(const std::string& value, const std::string& wanted);

std::optional<int> wholeNumber(const std::string& text);

/// Digits with a sign and a point, nothing else.
std::optional<double> decimalNumber(const std::string& text);

std::optional<bool> onOrOff(const std::string& text);

/// How late something may be ordered to be, in whole milliseconds: up to ten minutes.
std::optional<std::chrono::milliseconds> lateness(const std::string& text);
ControlCommands::Answer refusedLateness(const std::string& text);

/// How many times something may be ordered to happen: up to a million, and 0 to take it back.
std::optional<unsigned> orderedTimes(const std::string& text);

/// The same from the second of these words, 1 when there is none.
std::optional<unsigned> timesIn(const std::vector<std::string>& words);

/// `things` is what happens so often: "requests".
ControlCommands::Answer refusedTimes(const std::string& text, const std::string& things);

/// The bytes of an even number of hexadecimal digits, at least two.
std::optional<std::string> hexBytes(const std::string& text);

/// Two capital digits.
std::string hexText(std::uint8_t byte);

} // namespace headunit
