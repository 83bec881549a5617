#pragma once

#include <stdexcept>
#include <string>

namespace station {

/// Why there is no answer. The one exception type of this library; `what()` is a message for a person.
/// A unit that refuses a command has answered: that is an `Answer`, not a failure.
class Failure : public std::runtime_error {
public:
    enum class Kind {
        InvalidRequest,  ///< a name, an argument, a target or a time-out that cannot be used
        CannotConnect,   ///< the target has no address or does not take the connection
        TimedOut,        ///< the deadline passed
        ConnectionLost,  ///< the connection ended before the answer was complete
        MalformedAnswer, ///< bytes arrived that are not an answer to this command
    };

    Failure(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace station
