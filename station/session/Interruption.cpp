#include "session/Interruption.h"

namespace station {

namespace {

std::atomic<Interruption*> interruptionOfSignals{nullptr};

void takeSignal(int signal) {
    if (Interruption* interruption = interruptionOfSignals.load())
        interruption->raise(signal);
}

void watch(int signal, struct sigaction& previous) {
    struct sigaction action {};
    action.sa_handler = takeSignal;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, nullptr, &previous);
    if (previous.sa_handler != SIG_IGN)
        ::sigaction(signal, &action, nullptr);
}

std::string nameOf(int signal) {
    switch (signal) {
        case SIGHUP:
            return "SIGHUP";
        case SIGINT:
            return "SIGINT";
        case SIGQUIT:
            return "SIGQUIT";
        case SIGTERM:
            return "SIGTERM";
        default:
            return "signal " + std::to_string(signal);
    }
}

} // namespace

void Interruption::raise(int signal) {
    int none = 0;
    m_signal.compare_exchange_strong(none, signal);
}

SignalWatch::SignalWatch(Interruption& interruption, std::initializer_list<int> signals) {
    interruptionOfSignals = &interruption;
    for (const int signal : signals) {
        m_watched.push_back({signal, {}});
        watch(signal, m_watched.back().previous);
    }
}

SignalWatch::~SignalWatch() {
    for (const Watched& watched : m_watched)
        ::sigaction(watched.signal, &watched.previous, nullptr);
    interruptionOfSignals = nullptr;
}

Interrupted::Interrupted(int signal)
    : std::runtime_error("interrupted by " + nameOf(signal)), m_signal(signal) {}

void stopIfInterrupted(const Interruption& interruption) {
    if (const int signal = interruption.signal(); signal != 0)
        throw Interrupted(signal);
}

} // namespace station
