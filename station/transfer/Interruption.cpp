#include "transfer/Interruption.h"

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
    if (signal == SIGINT)
        return "SIGINT";
    return signal == SIGTERM ? "SIGTERM" : "signal " + std::to_string(signal);
}

} // namespace

void Interruption::raise(int signal) {
    int none = 0;
    m_signal.compare_exchange_strong(none, signal);
}

SignalWatch::SignalWatch(Interruption& interruption) {
    interruptionOfSignals = &interruption;
    watch(SIGINT, m_interrupt);
    watch(SIGTERM, m_terminate);
}

SignalWatch::~SignalWatch() {
    ::sigaction(SIGINT, &m_interrupt, nullptr);
    ::sigaction(SIGTERM, &m_terminate, nullptr);
    interruptionOfSignals = nullptr;
}

Interrupted::Interrupted(int signal)
    : std::runtime_error("interrupted by " + nameOf(signal)), m_signal(signal) {}

} // namespace station
