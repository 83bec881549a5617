#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "client/Deadline.h"

namespace station {

/// A connection that carries bytes to a unit and back, whatever it is made of. It knows nothing of what
/// the bytes mean: framing belongs to whoever uses the link. One thread at a time.
class Link {
public:
    virtual ~Link() = default;

    /// Sends all of `bytes`; blocks until the system has taken
    /// them. Throws `Failure`: `TimedOut` or `ConnectionLost`.
    virtual void send(std::string_view bytes, const Deadline& deadline) = 0;

    /// Blocks until something has arrived and returns it: at least one byte, or an empty string when the
    /// peer has ended the connection. Nothing when nothing has arrived by `moment`; looks once even when
    /// that has passed. Throws `Failure`: `ConnectionLost`.
    virtual std::optional<std::string> receiveBy(const Deadline& moment) = 0;

    /// The same, but with something to return in the end. Throws `Failure`: `TimedOut`, also when the
    /// deadline had passed before the call, or `ConnectionLost`.
    std::string receive(const Deadline& deadline);
};

/// The failure of an answer that has not come in time.
[[noreturn]] void failWithoutAnswer();

} // namespace station
