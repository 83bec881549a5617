#pragma once

#include <atomic>
#include <thread>

#include "support/Delays.h"
#include "wire/Descriptor.h"

/// What an exchange takes on this machine, as busy as it is now, with nothing behind it: a thread sends
/// a byte, another one sends it back, and that twice, since a request passes two threads of the daemon.
/// Again and again, from its making to its end. The delays are its own until then.
class BareExchange {
public:
    explicit BareExchange(Delays& delays);
    BareExchange(const BareExchange&) = delete;
    BareExchange& operator=(const BareExchange&) = delete;
    ~BareExchange();

private:
    void ask();
    void answer() const;

    Delays& m_delays;
    System::Descriptor m_asking;
    System::Descriptor m_answering;
    std::atomic<bool> m_stop{false};
    std::thread m_answerer;
    std::thread m_asker;
};
