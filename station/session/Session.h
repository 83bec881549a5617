#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "client/Answer.h"

namespace station {

/// A link to a unit that is open and runs any number of commands, whatever it is made of and whichever
/// form the commands have on it: one after the other, or, where `widen` says so, some at once. One
/// thread at a time.
class Session {
public:
    using InfoSink = std::function<void(const std::string& message)>;

    virtual ~Session() = default;

    /// Gets ready for commands that do not depend on each other. Returns how many may be under way at
    /// once from now on. Blocks while it connects.
    virtual std::size_t widen() { return 1; }

    /// Lets a command get under way. Throws `Failure` or `Interrupted`; then it is not.
    virtual void begin(const std::string& name, const std::vector<std::string>& arguments) = 0;

    /// Blocks until the command is answered that has been under way for
    /// the longest; a refusal by the unit is an answer. What comes ahead
    /// of the answer goes to `onInfo`. Throws `Failure` or `Interrupted`.
    virtual Answer finish(const InfoSink& onInfo) = 0;

    /// Nobody wants the answers of the commands that are under way any more. Blocks until they have come
    /// or failed to.
    virtual void abandon() {}

    /// Both for one command.
    Answer execute(const std::string& name, const std::vector<std::string>& arguments,
                   const InfoSink& onInfo) {
        begin(name, arguments);
        return finish(onInfo);
    }
};

} // namespace station
