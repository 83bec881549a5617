#pragma once

#include <string>

#include "support/ByteStream.h"
#include "wire/Descriptor.h"

namespace headunit_test {

/// A terminal as a program on the unit or at the station holds it.
class Line : public ByteStream {
public:
    /// Opens the node; the test fails when that is impossible.
    explicit Line(const std::string& path);

    /// Writes what fits without waiting. The number of bytes, 0 when there is no room.
    std::size_t writeSome(const std::string& bytes) const;

    /// What is there now.
    std::string readNow() const;

    /// Whether the line gets hung up.
    bool seesHangUp() const;
};

} // namespace headunit_test
