#pragma once

#include <signal.h>

#include <atomic>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace station {

/// Whether somebody wants what goes on to end. Any thread, and signal handlers.
class Interruption {
public:
    /// The number of the first signal that asked for it; 0 for none.
    int signal() const { return m_signal.load(); }
    void raise(int signal);

private:
    std::atomic<int> m_signal{0};
    static_assert(std::atomic<int>::is_always_lock_free, "a signal handler sets it");
};

/// Turns signals into an interruption while the object lives; one at a time. A signal that was ignored
/// stays so.
class SignalWatch {
public:
    explicit SignalWatch(Interruption& interruption,
                         std::initializer_list<int> signals = {SIGINT, SIGTERM});
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

private:
    struct Watched {
        int signal;
        struct sigaction previous;
    };

    std::vector<Watched> m_watched;
};

/// Ends what was interrupted.
class Interrupted : public std::runtime_error {
public:
    explicit Interrupted(int signal);

    int signal() const { return m_signal; }

private:
    int m_signal;
};

/// Throws `Interrupted` when a signal has come.
void stopIfInterrupted(const Interruption& interruption);

} // namespace station
