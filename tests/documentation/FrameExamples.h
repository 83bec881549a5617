#pragma once

#include <istream>
#include <string>
#include <vector>

/// One line of an example block of the protocol's documentation.
struct FrameExample {
    bool sent;        ///< by the station; otherwise by the unit
    std::string text; ///< what stands behind "> " or "< "
};

/// An `exchange link` block, which shows every byte from the opening of the port, or an `exchange
/// frames` block, which leaves the acknowledgements out.
struct FrameExamples {
    bool showsAcknowledgements;
    std::vector<FrameExample> lines;
};

/// The blocks in the order of the document. Throws std::invalid_argument for a line that is no example.
std::vector<FrameExamples> readFrameExamples(std::istream& document);

/// The bytes of a line: two hexadecimal digits each, "quoted" characters, and {build} for the bytes of
/// the build time. Throws std::invalid_argument for anything else.
std::string bytesOf(const std::string& text, const std::string& buildTime);
