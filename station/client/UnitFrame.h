#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "wire/Frame.h"

namespace station {

/// One complete frame that a unit sent over a binary link: a debug frame or an answer. Immutable.
class UnitFrame {
public:
    /// `bytes` as `UnitFrameDecoder` cuts them: at least the two bytes of a debug frame or the eight of
    /// an answer.
    explicit UnitFrame(std::string bytes);

    const std::string& bytes() const { return m_bytes; }

    bool isDebug() const { return id() == wire::kDebugId; }

    /// The text of a debug frame.
    std::string text() const;

    unsigned char id() const { return byteAt(1); }

    /// What follows is there in an answer only.
    unsigned char subCommand() const { return byteAt(2); }
    unsigned char parameter() const { return byteAt(3); }
    std::uint32_t code() const;
    std::string_view payload() const;

    /// True for a successful status: the answer to a request for it, and what a unit announces itself
    /// with when it opens its port. Both look the same.
    bool isStatus() const;

private:
    unsigned char byteAt(std::size_t position) const {
        return static_cast<unsigned char>(m_bytes[position]);
    }

    std::string m_bytes;
};

} // namespace station
