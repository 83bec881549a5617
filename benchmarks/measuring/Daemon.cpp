#include "measuring/Daemon.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "measuring/Failure.h"
#include "measuring/Waiting.h"

namespace Measuring {

namespace {

bool isListening(std::uint16_t port) {
    std::array<char, 32> loopback{};
    std::array<char, 32> anyAddress{};
    // Local address, no remote address, state "listening".
    std::snprintf(loopback.data(), loopback.size(), "0100007F:%04X 00000000:0000 0A", port);
    std::snprintf(anyAddress.data(), anyAddress.size(), "00000000:%04X 00000000:0000 0A", port);
    std::ifstream sockets("/proc/net/tcp");
    std::string line;
    while (std::getline(sockets, line))
        if (line.find(loopback.data()) != std::string::npos ||
            line.find(anyAddress.data()) != std::string::npos)
            return true;
    return false;
}

ChildProcess startAlone(const std::string& program) {
    if (isListening(Daemon::kPort))
        throw std::runtime_error("port " + std::to_string(Daemon::kPort) +
                                 " is taken: run this in a unit of its own, with benchmarks/run");
    if (::access(program.c_str(), X_OK) != 0)
        throw failure("cannot run " + program);
    return ChildProcess::program(program);
}

} // namespace

std::string programBesideThis(const std::string& name) {
    std::array<char, 4096> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length < 0)
        throw failure("cannot tell where this program is");
    const std::string self(path.data(), static_cast<std::size_t>(length));
    return self.substr(0, self.rfind('/') + 1) + name;
}

std::string daemonBesideThisProgram() {
    return programBesideThis("production");
}

Daemon::Daemon(const std::string& program) : m_process(startAlone(program)) {
    waitUntil(
        [this] {
            if (!m_process.isAlive())
                throw std::runtime_error("the daemon ended at once");
            return isListening(kPort);
        },
        "listening on port " + std::to_string(kPort));
}

} // namespace Measuring
