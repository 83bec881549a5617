#pragma once

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/Descriptor.h"

/// What an exchange takes on this machine, as busy as it is now, with nothing behind it: a thread sends
/// a byte, another one sends it back, and that twice, since a request passes two threads of the daemon.
/// Again and again, from its making to its end.
class BareExchange {
public:
    BareExchange();
    BareExchange(const BareExchange&) = delete;
    BareExchange& operator=(const BareExchange&) = delete;
    ~BareExchange();

    std::chrono::milliseconds longestDelay() const { return m_longestDelay; }

private:
    void ask();
    void answer() const;

    System::Descriptor m_asking;
    System::Descriptor m_answering;
    std::atomic<bool> m_stop{false};
    std::atomic<std::chrono::milliseconds> m_longestDelay{std::chrono::milliseconds(0)};
    std::thread m_answerer;
    std::thread m_asker;
};
