#include "support/BareExchange.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

BareExchange::BareExchange(Delays& delays) : m_delays(delays) {
    int ends[2] = {};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error(std::string("socketpair: ") + std::strerror(errno));
    m_asking.reset(ends[0]);
    m_answering.reset(ends[1]);
    m_answerer = std::thread([this] { answer(); });
    m_asker = std::thread([this] { ask(); });
}

BareExchange::~BareExchange() {
    m_stop = true;
    m_asker.join();
    m_asking.reset(); // what the other one reads ends with it
    m_answerer.join();
}

void BareExchange::ask() {
    constexpr int kTurns = 2;
    while (!m_stop) {
        const auto begin = Delays::Clock::now();
        for (int turn = 0; turn < kTurns; ++turn) {
            char byte = 0;
            if (::write(m_asking.get(), &byte, 1) != 1 || ::read(m_asking.get(), &byte, 1) != 1)
                return;
        }
        m_delays.addSince(begin);
    }
}

void BareExchange::answer() const {
    char byte = 0;
    while (::read(m_answering.get(), &byte, 1) == 1 && ::write(m_answering.get(), &byte, 1) == 1) {
    }
}
