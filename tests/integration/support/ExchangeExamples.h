#pragma once

#include <istream>
#include <string>
#include <vector>

/// One line of an example in a document.
struct ExampleLine {
    bool isSent; ///< by the station; otherwise by the unit
    std::string text;
};

using Example = std::vector<ExampleLine>;

/// The fenced blocks marked `exchange tcp`, in their order. Throws std::invalid_argument when such a
/// block holds anything but lines that begin with "> " or "< ".
std::vector<Example> readExamples(std::istream& document);

/// The text with <STX>, <ETX> and <LF> replaced by their bytes.
std::string bytesOf(const std::string& text);

/// A pattern that matches the text: its bytes, with any build stamp for {build} and any number for
/// {number}.
std::string patternOf(const std::string& text);
