#include "platform/posix/ShellInput.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace System {

ShellInput::ShellInput(Descriptor pipe, std::string_view text) : m_pipe(std::move(pipe)), m_text(text) {
    ::fcntl(m_pipe.get(), F_SETFL, O_NONBLOCK);
}

bool ShellInput::feed() {
    while (m_pipe && !m_text.empty()) {
        const ssize_t written = ::write(m_pipe.get(), m_text.data(), m_text.size());
        if (written >= 0)
            m_text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EAGAIN)
            return false;
        else if (errno != EINTR)
            m_text = {}; // nobody reads any more
    }
    m_pipe.reset();
    return true;
}

} // namespace System
