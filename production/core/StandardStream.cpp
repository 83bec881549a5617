#include "core/StandardStream.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "core/Diagnostics.h"
#include "core/StringFormat.h"
#include "platform/PatientPoll.h"

namespace {

constexpr char kLoss[] = "%s%zu bytes for %s were lost\n";

// What is reported when memory is short finds room to wait in.
constexpr std::size_t kKept = 4096;

using Clock = std::chrono::steady_clock;

/// Whether a pipe takes PIPE_BUF bytes without making its writer wait.
bool takesTextAtOnce(int descriptor) {
    pollfd event{descriptor, POLLOUT, 0};
    const int ready = ::poll(&event, 1, 0);
    // A process that may have no descriptors may not ask, but write.
    return ready < 0 || (ready == 1 && (event.revents & POLLOUT) != 0);
}

/// Empties a text. It keeps its room, unless that has become large.
void empty(std::string& text) {
    if (text.capacity() > StandardStream::kMostWaiting)
        std::string().swap(text);
    text.clear();
}

void waitUntilItTakesText(int descriptor) {
    pollfd event{descriptor, POLLOUT, 0};
    System::patientPoll(&event, 1, -1);
}

} // namespace

StandardStream& StandardStream::output() {
    static auto* const stream = new StandardStream(STDOUT_FILENO, "standard output", &error());
    return *stream;
}

StandardStream& StandardStream::error() {
    static auto* const stream = new StandardStream(STDERR_FILENO, "standard error", nullptr);
    return *stream;
}

StandardStream::StandardStream(int descriptor, const char* name, StandardStream* notices)
    : Thread(name),
      m_descriptor(descriptor),
      m_name(name),
      m_notices(notices),
      m_textLock(System::Mutex::Normal) {}

bool StandardStream::start() {
    const System::Lock lock(m_textLock);
    if (!Thread::start())
        return false;
    m_hasThread = true;
    // Not by the thread: the C library sets up memory of its own for each thread that asks for some.
    m_waiting.reserve(kKept);
    m_batch.text.reserve(kKept);
    return true;
}

void StandardStream::write(std::string_view text) noexcept {
    if (text.empty() || takeOver(text))
        return;
    const std::string notice = endWritingAtOnce(writeAtOnce(text));
    (m_notices == nullptr ? this : m_notices)->write(notice);
}

/// False when the caller has to write it, at once and before anybody else writes: whether a stream takes
/// text, and writing, are two steps.
bool StandardStream::takeOver(std::string_view text) noexcept {
    {
        const System::Lock lock(m_textLock);
        if (!m_hasThread && !std::exchange(m_isWritingAtOnce, true))
            return false;
        try {
            if (m_hasThread && m_waiting.size() < kMostWaiting)
                m_waiting += text;
            else
                m_lost += text.size();
        } catch (const std::exception&) {
            m_lost += text.size();
        }
    }
    m_added.signal();
    return true;
}

/// The notice to write now, if any.
std::string StandardStream::endWritingAtOnce(std::size_t lost) noexcept {
    std::string notice;
    {
        const System::Lock lock(m_textLock);
        m_isWritingAtOnce = false;
        notice = noticeAfter(lost);
    }
    m_added.signal(); // the thread may have been started meanwhile
    return notice;
}

/// What to tell now that a text has been tried, of which so much was lost: nothing as long as the stream
/// does not take all. The caller holds the lock.
std::string StandardStream::noticeAfter(std::size_t lost) noexcept {
    m_lost += lost;
    if (lost > 0 || m_lost == 0)
        return {};
    try {
        std::string notice = string_format(kLoss, kDiagnosticPrefix, m_lost, m_name);
        m_lost = 0;
        return notice;
    } catch (const std::exception&) {
        return {}; // after the next text, then
    }
}

void StandardStream::threadLoop(System::Thread*) {
    bool wasAttempted = false;
    std::size_t lost = 0;
    for (;;) {
        next(wasAttempted, lost);
        if (m_notices != nullptr)
            m_notices->write(m_batch.notice);
        lost = writeWaiting(m_batch.text);
        wasAttempted = !m_batch.text.empty();
        if (m_notices == nullptr) {
            lost += writeWaiting(m_batch.notice);
            wasAttempted = wasAttempted || !m_batch.notice.empty();
        }
    }
}

/// Waits for the next text. A loss is told behind the text before it and ahead of the next.
void StandardStream::next(bool wasAttempted, std::size_t lost) {
    const System::Lock lock(m_textLock);
    while (m_isWritingAtOnce)
        m_added.wait(m_textLock);
    empty(m_batch.text);
    m_batch.notice = wasAttempted ? noticeAfter(lost) : std::string();
    // Of a text that waits, nothing was lost: it comes before a notice on the same stream.
    if (m_notices == nullptr)
        m_batch.text.swap(m_waiting);
    m_isWriting = false;
    while (m_batch.text.empty() && m_batch.notice.empty() && m_waiting.empty()) {
        m_written.signal();
        m_added.wait(m_textLock);
    }
    if (m_batch.text.empty())
        m_batch.text.swap(m_waiting);
    m_isWriting = true;
}

/// Returns how many bytes were lost.
std::size_t StandardStream::writeWaiting(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t count = ::write(m_descriptor, text.data(), text.size());
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (count < 0 && errno == EAGAIN)
            waitUntilItTakesText(m_descriptor);
        else if (count == 0 || errno != EINTR)
            break;
    }
    return text.size();
}

/// The same without waiting.
std::size_t StandardStream::writeAtOnce(std::string_view text) const {
    while (!text.empty() && takesTextAtOnce(m_descriptor)) {
        const auto piece = std::min<std::size_t>(text.size(), PIPE_BUF);
        const ssize_t count = ::write(m_descriptor, text.data(), piece);
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            break;
    }
    return text.size();
}

void StandardStream::flush(std::chrono::milliseconds limit) {
    const Clock::time_point deadline = Clock::now() + limit;
    const System::Lock lock(m_textLock);
    while (m_hasThread && (m_isWriting || !m_waiting.empty()) && Clock::now() < deadline)
        m_written.waitFor(m_textLock,
                          std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()));
}
