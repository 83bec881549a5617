#pragma once

#include <functional>
#include <string>
#include <vector>

#include "client/Answer.h"

namespace station {

/// A link to a unit that is open and runs any number of commands in turn, whatever it is made of and
/// whichever form the commands have on it. One thread at a time.
class Session {
public:
    using InfoSink = std::function<void(const std::string& message)>;

    virtual ~Session() = default;

    /// Blocks until the command is answered; a refusal by the unit is an answer. What comes ahead of the
    /// answer goes to `onInfo`. Throws `Failure` or `Interrupted`.
    virtual Answer execute(const std::string& name, const std::vector<std::string>& arguments,
                           const InfoSink& onInfo) = 0;
};

} // namespace station
