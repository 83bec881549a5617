#pragma once

#include <chrono>
#include <csignal>

namespace headunit {

/// Collects what the main thread waits for: the end of a child, and the signals
/// that ask headunit to stop (SIGINT, SIGTERM, SIGHUP, SIGQUIT; those that were
/// ignored at start stay ignored). Make it before any other thread, so that all
/// threads inherit the blocked mask; use it on the main thread only.
class StopSignals {
public:
    StopSignals();

    /// Blocks until a child has ended (returns SIGCHLD), a stop signal has come (returns it; from then
    /// on every call returns it at once) or the time is up (returns 0).
    int wait(std::chrono::milliseconds longest);

    /// The same without an end.
    int wait();

private:
    int noted(int signal);

    sigset_t m_awaited;
    int m_stop = 0;
};

} // namespace headunit
