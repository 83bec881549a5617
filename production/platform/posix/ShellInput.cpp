#include "platform/posix/ShellInput.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace System {

ShellInput::ShellInput(Descriptor pipe, std::string_view text) : m_pipe(std::move(pipe)), m_text(text) {
    if (::fcntl(m_pipe.get(), F_SETFL, O_NONBLOCK) == -1)
        m_failure = errno;
}

ShellInput::Progress ShellInput::feed(int& error) {
    while (m_failure == 0 && m_pipe && !m_text.empty()) {
        const ssize_t written = ::write(m_pipe.get(), m_text.data(), m_text.size());
        if (written >= 0) {
            m_text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            m_text = {}; // nobody reads any more
        } else if (errno == EAGAIN) {
            return Progress::Waiting;
        } else if (errno != EINTR) {
            m_failure = errno;
        }
    }
    error = m_failure;
    if (m_failure != 0)
        return Progress::Failed;
    m_pipe.reset();
    return Progress::Done;
}

} // namespace System
