#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "client/Deadline.h"

namespace station {

/// The caller's end of a pipe: where bytes are typed, and where those that come are shown. One thread.
class Console {
public:
    struct Input {
        std::string bytes;
        bool isEnded = false; ///< nothing follows them
    };

    virtual ~Console() = default;

    /// True when a person types, who needs a key to end.
    virtual bool isTerminal() const = 0;

    /// The other end is there: from here on everything that is typed is meant for it, up to `end()`.
    virtual void begin() = 0;
    virtual void end() = 0;

    /// Blocks until something is typed, for `wait` at most; a signal may end that early. Takes at most
    /// `most` bytes. When the input has ended, blocks for `wait`. Throws std::system_error.
    virtual Input read(Seconds wait, std::size_t most) = 0;

    /// Shows all of it. Blocks for as long as nobody takes it; throws `Interrupted` then, when a signal
    /// comes, or std::system_error.
    virtual void write(std::string_view bytes) = 0;
};

} // namespace station
