#include "support/ByteStream.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "support/Waiting.h"

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

bool isTransient(int error) {
    return error == EINTR || error == EAGAIN;
}

bool isEnd(int error) {
    return error == EPIPE || error == ECONNRESET || error == EIO;
}

/// Without a signal when the peer has gone, and without waiting.
ssize_t writeNow(int end, std::string_view bytes) {
    const ssize_t count = ::send(end, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return count < 0 && errno == ENOTSOCK ? ::write(end, bytes.data(), bytes.size()) : count;
}

bool endsWith(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

} // namespace

void ByteStream::send(std::string_view bytes) const {
    if (!trySend(bytes))
        throw std::runtime_error("send: the peer has gone or does not read");
}

bool ByteStream::trySend(std::string_view bytes) const {
    while (!bytes.empty()) {
        if (!waitFor(POLLOUT, kPatience)) {
            ADD_FAILURE() << "the peer does not read";
            return false;
        }
        const ssize_t count = writeNow(m_end.get(), bytes);
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (isEnd(errno))
            return false;
        else if (!isTransient(errno))
            fail("send");
    }
    return true;
}

void ByteStream::sendByteByByte(std::string_view bytes) const {
    for (const char& byte : bytes)
        send({&byte, 1});
}

std::string ByteStream::receive(std::size_t count) const {
    std::string bytes;
    while (bytes.size() < count) {
        const std::string more = receiveSome(count - bytes.size());
        if (more.empty())
            break;
        bytes += more;
    }
    return bytes;
}

std::string ByteStream::receiveSome(std::size_t most) const {
    std::array<char, 65536> block;
    for (;;) {
        if (!waitFor(POLLIN, kPatience)) {
            ADD_FAILURE() << "nothing comes from the peer";
            return {};
        }
        const ssize_t count = ::read(m_end.get(), block.data(), std::min(most, block.size()));
        if (count >= 0)
            return {block.data(), static_cast<std::size_t>(count)};
        if (isEnd(errno))
            return {};
        if (!isTransient(errno))
            fail("read");
    }
}

std::string ByteStream::receiveTo(std::string_view ending) const {
    std::string bytes;
    while (!endsWith(bytes, ending)) {
        const std::string byte = receiveSome(1);
        if (byte.empty())
            break;
        bytes += byte;
    }
    return bytes;
}

std::string ByteStream::receiveFrame() const {
    std::string frame = receive(1);
    if (!frame.empty() && static_cast<unsigned char>(frame.front()) > 1)
        frame += receive(static_cast<unsigned char>(frame.front()) - 1U);
    return frame;
}

std::string ByteStream::receiveUntilClosed() const {
    constexpr std::size_t kMost = 65536;
    std::string all;
    for (;;) {
        const std::string more = receiveSome(kMost);
        if (more.empty())
            return all;
        all += more;
    }
}

bool ByteStream::hasInputWithin(std::chrono::milliseconds time) const {
    return waitFor(POLLIN, time);
}

bool ByteStream::waitFor(short events, std::chrono::milliseconds time) const {
    pollfd event{m_end.get(), events, 0};
    int ready = 0;
    do {
        ready = ::poll(&event, 1, static_cast<int>(time.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}
