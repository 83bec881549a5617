#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "client/UnitFrame.h"

namespace station {

/// Cuts the bytes that a unit sends over a binary link into frames, by the length byte that each begins
/// with. Bytes may come in pieces of any size. No I/O; not synchronised.
///
/// Malformed is a length of 0 or 1, and one below 8 for anything but a debug frame: told as soon as the
/// bytes that show it are there. Nothing in a frame marks its beginning, so there is no finding the next
/// one among what follows a malformed one: only a pause on the line says that a new frame begins.
/// Whoever knows of such a pause calls `restart()`; what was received before it is dropped.
///
/// The bytes are looked at in `next()` and not before, so that a complete frame is handed out even when
/// garbage follows it.
class UnitFrameDecoder {
public:
    void feed(std::string_view bytes) { m_bytes += bytes; }

    /// The next complete frame, or nothing when more bytes are needed. Throws `Failure`
    /// (`MalformedAnswer`) at a malformed one, and again at every later call until `restart()`.
    std::optional<UnitFrame> next();

    /// True when bytes are left that `next()` has not made a frame of.
    bool isMidFrame() const { return !m_bytes.empty(); }

    /// Begins anew, with a frame's first byte.
    void restart() { m_bytes.clear(); }

private:
    std::string m_bytes;
};

} // namespace station
