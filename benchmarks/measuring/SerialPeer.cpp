#include "measuring/SerialPeer.h"

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>

#include "measuring/Failure.h"
#include "wire/Descriptor.h"
#include "wire/Frame.h"

namespace Measuring {

namespace {

constexpr std::size_t kAcknowledgementSize = sizeof kAcknowledgement - 1;

void waitForInput(int terminal) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(terminal, &readable);
    while (::select(terminal + 1, &readable, nullptr, nullptr, nullptr) < 0)
        if (errno != EINTR)
            throw failure("cannot wait for a request");
}

void readExactly(int terminal, unsigned char* bytes, std::size_t count) {
    while (count > 0) {
        waitForInput(terminal);
        const ssize_t received = ::read(terminal, bytes, count);
        if (received <= 0)
            throw failure("no request");
        bytes += received;
        count -= static_cast<std::size_t>(received);
    }
}

void serve(const std::string& path, const std::string& answer) {
    const System::Descriptor terminal(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal)
        throw failure("cannot open " + path);
    std::array<unsigned char, wire::kLongestFrame> frame{};
    for (;;) {
        readExactly(terminal.get(), frame.data(), 1);
        if (frame[0] == 0)
            throw std::runtime_error("a frame without a length");
        readExactly(terminal.get(), frame.data() + 1, frame[0] - 1U);
        if (::write(terminal.get(), answer.data(), answer.size()) != static_cast<ssize_t>(answer.size()))
            throw failure("cannot answer");
        readExactly(terminal.get(), frame.data(), kAcknowledgementSize);
    }
}

} // namespace

SerialPeer::SerialPeer(const std::string& terminal, const std::string& answer)
    : m_process(ChildProcess::running([&] { serve(terminal, answer); })) {}

} // namespace Measuring
