#pragma once

#include <string_view>

#include "platform/Descriptor.h"

namespace System {

/// The commands on their way into a shell: what its pipe has not taken yet. Closes the pipe when there
/// is nothing left, so that the shell sees the end of its input. The calling process must ignore
/// SIGPIPE.
class ShellInput {
public:
    /// The text has to outlive the object.
    ShellInput(Descriptor pipe, std::string_view text);

    /// -1 when nothing is left.
    int pipe() const { return m_pipe.get(); }

    /// Writes as much as the pipe takes, without waiting. Whether nothing is left: all of it was taken,
    /// or nobody reads it any more.
    bool feed();

private:
    Descriptor m_pipe;
    std::string_view m_text;
};

} // namespace System
