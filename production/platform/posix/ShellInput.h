#pragma once

#include <string_view>

#include "wire/Descriptor.h"

namespace System {

/// The commands on their way into a shell: what its pipe has not taken yet. Closes the pipe when there
/// is nothing left, so that the shell sees the end of its input, and with the object itself: a shell
/// that has got a part has to be gone by then. The calling process must ignore SIGPIPE.
class ShellInput {
public:
    /// The text has to outlive the object.
    ShellInput(Descriptor pipe, std::string_view text);

    /// -1 when nothing is left.
    int pipe() const { return m_pipe.get(); }

    enum class Progress {
        Done,    ///< all of it was taken, or nobody reads it any more; the pipe is closed
        Waiting, ///< the pipe is full
        Failed   ///< `error` tells why; the reader waits for the rest and must not get an end instead
    };

    /// Writes as much as the pipe takes, without waiting.
    Progress feed(int& error);

private:
    Descriptor m_pipe;
    std::string_view m_text;
    int m_failure = 0; // an errno
};

} // namespace System
