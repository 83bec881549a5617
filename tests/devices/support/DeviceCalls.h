#pragma once

#include <poll.h>
#include <termios.h>

#include <cstddef>

#include "runtime/Mutex.h"
#include "support/CallScript.h"

/// Stands between the serial drivers and the system. Make at most one at a time.
///
/// Known by name: tcgetattr, tcsetattr, cfsetospeed, cfsetispeed, cfmakeraw, tcflush, fflush, poll,
/// read, write, and makeRaw, the seam's own function, which is not noted.
class DeviceCalls : public CallScript {
public:
    DeviceCalls();
    ~DeviceCalls();

    /// Notes "lock" and "unlock" too, of this mutex or of the mutexes within the object.
    void watch(const System::Mutex& mutex) { watch(&mutex, sizeof mutex); }
    void watch(const void* object, std::size_t bytes);

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

    /// For the wrappers.
    bool watches(const void* mutex) const;

private:
    const char* m_watched = nullptr;
    std::size_t m_watchedBytes = 0;
};
