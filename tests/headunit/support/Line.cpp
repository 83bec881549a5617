#include "support/Line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace headunit_test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kDeadline{30};

/// Whether one of the events has come before the deadline.
bool waitFor(int descriptor, short events, Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd waited{descriptor, events, 0};
    return ::poll(&waited, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0))) == 1;
}

} // namespace

Line::Line(const std::string& path)
    : m_descriptor(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    EXPECT_TRUE(m_descriptor) << path << ": " << std::strerror(errno);
}

std::size_t Line::writeSome(const std::string& bytes) const {
    const ssize_t count = ::write(m_descriptor.get(), bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool Line::write(const std::string& bytes) const {
    const auto deadline = Clock::now() + kDeadline;
    std::size_t done = 0;
    while (done < bytes.size()) {
        if (!waitFor(m_descriptor.get(), POLLOUT, deadline))
            return false;
        const ssize_t count = ::write(m_descriptor.get(), bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

std::string Line::read(std::size_t count) const {
    const auto deadline = Clock::now() + kDeadline;
    std::string text;
    std::array<char, 4096> block;
    while (text.size() < count && waitFor(m_descriptor.get(), POLLIN, deadline)) {
        const std::size_t most = std::min(count - text.size(), block.size());
        const ssize_t got = ::read(m_descriptor.get(), block.data(), most);
        if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR))
            return text;
        text.append(block.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    return text;
}

std::string Line::readTo(const std::string& text) const {
    std::string all;
    for (;;) {
        const std::string next = read(1);
        all += next;
        const bool ends =
            all.size() >= text.size() && all.compare(all.size() - text.size(), text.size(), text) == 0;
        if (next.empty() || ends)
            return all;
    }
}

std::string Line::readNow() const {
    std::array<char, 4096> block;
    const ssize_t got = ::read(m_descriptor.get(), block.data(), block.size());
    return got > 0 ? std::string(block.data(), static_cast<std::size_t>(got)) : "";
}

bool Line::seesHangUp() const {
    const auto deadline = Clock::now() + kDeadline;
    pollfd waited{m_descriptor.get(), 0, 0};
    while (Clock::now() < deadline)
        if (::poll(&waited, 1, 100) == 1 && (waited.revents & POLLHUP) != 0) {
            char byte;
            const ssize_t got = ::read(m_descriptor.get(), &byte, 1);
            return got == 0 || (got < 0 && errno == EIO);
        }
    return false;
}

} // namespace headunit_test
