#pragma once

#include <istream>
#include <string>
#include <vector>

/// One line of an `exchange frames` block of the protocol's documentation.
struct FrameExample {
    bool sent;        ///< by the station; otherwise by the unit
    std::string text; ///< what stands behind "> " or "< "
};

/// The blocks in the order of the document.
std::vector<std::vector<FrameExample>> readFrameExamples(std::istream& document);

/// The bytes of a line: two hexadecimal digits each, "quoted" characters, and {build} for the five bytes
/// of the build time. Throws std::invalid_argument for anything else.
std::vector<unsigned char> bytesOf(const std::string& text, const std::vector<unsigned char>& buildTime);
