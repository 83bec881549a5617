#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "session/Session.h"

namespace station {

/// A command that the unit did not carry out; `what()` holds its message as well.
class Refused : public std::runtime_error {
public:
    Refused(std::uint32_t code, std::string message);

    std::uint32_t code() const { return m_code; }
    /// What the unit said ahead of the answer; may be empty.
    const std::string& message() const { return m_message; }

private:
    std::uint32_t m_code;
    std::string m_message;
};

/// Takes the answer to a command that is under way and has to succeed. What the unit says ahead of its
/// answer goes to `onInfo`, but for what it says ahead of a refusal, which is the message of the
/// `Refused` that is thrown. Throws what `Session::finish` throws, too.
Answer finishCommand(Session& session, const Session::InfoSink& onInfo);

/// The same from its beginning.
Answer carryOut(Session& session, const std::string& name, const std::vector<std::string>& arguments,
                const Session::InfoSink& onInfo);

} // namespace station
