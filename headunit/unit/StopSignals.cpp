#include "unit/StopSignals.h"

#include <cerrno>
#include <initializer_list>

namespace headunit {

StopSignals::StopSignals() {
    // An inherited "ignore" would make the kernel swallow the statuses of children.
    std::signal(SIGCHLD, SIG_DFL);
    sigemptyset(&m_awaited);
    sigaddset(&m_awaited, SIGCHLD);
    for (const int stop : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction current {};
        if (::sigaction(stop, nullptr, &current) == 0 && current.sa_handler != SIG_IGN)
            sigaddset(&m_awaited, stop);
    }
    ::sigprocmask(SIG_BLOCK, &m_awaited, nullptr);
}

int StopSignals::wait(std::chrono::milliseconds longest) {
    if (m_stop != 0)
        return m_stop;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(longest);
    timespec limit{};
    limit.tv_sec = static_cast<time_t>(seconds.count());
    limit.tv_nsec = static_cast<long>(std::chrono::nanoseconds(longest - seconds).count());
    return noted(::sigtimedwait(&m_awaited, nullptr, &limit));
}

int StopSignals::wait() {
    if (m_stop != 0)
        return m_stop;
    int signal;
    do
        signal = ::sigwaitinfo(&m_awaited, nullptr);
    while (signal < 0 && errno == EINTR);
    return noted(signal);
}

int StopSignals::noted(int signal) {
    if (signal < 0)
        return 0;
    if (signal != SIGCHLD)
        m_stop = signal;
    return signal;
}

} // namespace headunit
