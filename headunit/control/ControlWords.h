#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "control/ControlCommands.h"

namespace headunit {

/// What control commands read from their words and answer to unusable ones. Any thread.

ControlCommands::Answer refused(const std::string& why);

/// "'VALUE' is not WANTED".
ControlCommands::Answer refusedValue(const std::string& value, const std::string& wanted);

std::optional<int> wholeNumber(const std::string& text);

/// Digits with a sign and a point, nothing else.
std::optional<double> decimalNumber(const std::string& text);

std::optional<bool> onOrOff(const std::string& text);

/// The bytes of an even number of hexadecimal digits, at least two.
std::optional<std::string> hexBytes(const std::string& text);

/// Two capital digits.
std::string hexText(std::uint8_t byte);

} // namespace headunit
