#pragma once

#include <string>

/// The notation of the `exchange tcp` blocks.

/// The text with <STX>, <ETX> and <LF> replaced by their bytes.
std::string bytesOf(const std::string& text);

/// A pattern that matches the text: its bytes, with any
/// build stamp for {build} and any number for {number}.
std::string patternOf(const std::string& text);
