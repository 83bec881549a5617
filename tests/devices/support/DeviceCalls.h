#pragma once

#include <poll.h>
#include <termios.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "runtime/Mutex.h"

/// Stands between the serial drivers and the system: notes what they call, in its order, and lets chosen
/// calls end as the test says. What the script did not use fails the test. Any thread; make at most one
/// at a time.
///
/// Known by name: tcgetattr, tcsetattr, cfsetospeed, cfsetispeed, cfmakeraw, tcflush, fflush, poll,
/// read, write, and makeRaw, the seam's own function, which is not noted.
class DeviceCalls {
public:
    /// Runs in place of a call, or just before it when it gives no result. Sets errno itself.
    using Step = std::function<std::optional<long>()>;

    DeviceCalls();
    ~DeviceCalls();
    DeviceCalls(const DeviceCalls&) = delete;
    DeviceCalls& operator=(const DeviceCalls&) = delete;

    /// One step for each of the next calls of `function`; those after them go to the system.
    void script(const std::string& function, const std::vector<Step>& steps);
    void failNext(const std::string& function, int error) { script(function, {failing(error)}); }

    static Step failing(int error);
    static Step returning(long result);
    /// The call goes to the system.
    static Step passing();
    /// `action` runs, then the call goes to the system.
    static Step after(std::function<void()> action);

    /// Notes "lock" and "unlock" too, of this mutex or of the mutexes within the object.
    void watch(const System::Mutex& mutex) { watch(&mutex, sizeof mutex); }
    void watch(const void* object, std::size_t bytes);

    /// What has been called, in its order, since the start or the last `forget`.
    std::vector<std::string> all() const;
    void forget();

    /// The limits that `poll` was called with, in its order.
    std::vector<int> pollLimits() const;

    /// While it lives, what this thread calls is the test's own business.
    class Aside {
    public:
        Aside();
        ~Aside();
        Aside(const Aside&) = delete;
        Aside& operator=(const Aside&) = delete;

    private:
        bool m_before;
    };

    short pollEvents = POLLIN;  ///< what a `poll` reports whose result is scripted
    termios beforeRaw{};        ///< what the last `cfmakeraw` was given
    termios lastSet{};          ///< what the last `tcsetattr` was given
    int lastSetAction = -1;     ///< how it was to be done
    int lastFlushSelector = -1; ///< what the last `tcflush` was to discard

    /// For the wrappers: notes the call and gives the result that the script has for it.
    std::optional<long> on(const char* function);
    bool isScripted(const char* function) const;
    void notePollLimit(int limit);
    bool watches(const void* mutex) const;
    void note(const char* what);

private:
    mutable std::mutex m_mutex; // guards the next three
    std::vector<std::string> m_calls;
    std::vector<int> m_pollLimits;
    std::map<std::string, std::deque<Step>> m_script;

    const char* m_watched = nullptr;
    std::size_t m_watchedBytes = 0;
};
