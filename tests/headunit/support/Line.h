#pragma once

#include <string>

#include "platform/Descriptor.h"

namespace headunit_test {

/// A terminal as a program on the unit or at the station holds it. Every wait has a deadline.
class Line {
public:
    /// Opens the node; the test fails when that is impossible.
    explicit Line(const std::string& path);

    /// Writes all of it, waiting for room. False when it cannot or the deadline passed.
    bool write(const std::string& bytes) const;

    /// Writes what fits without waiting. The number of bytes, 0 when there is no room.
    std::size_t writeSome(const std::string& bytes) const;

    /// Reads until this many bytes have come, the line hung up or the deadline passed.
    std::string read(std::size_t count) const;

    /// Reads until what has come ends with the text, likewise.
    std::string readTo(const std::string& text) const;

    /// What is there now.
    std::string readNow() const;

    /// Whether the line gets hung up.
    bool seesHangUp() const;

    int descriptor() const { return m_descriptor.get(); }

private:
    System::Descriptor m_descriptor;
};

} // namespace headunit_test
