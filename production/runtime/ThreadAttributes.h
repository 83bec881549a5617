#pragma once

#include <pthread.h>

#include <cstddef>

namespace System {

/// The attributes that all threads of the daemon share: detached, with a small guarded stack whose first
/// part is committed in advance where the system can do that.
class ThreadAttributes {
public:
    static constexpr std::size_t kGuardBytes = 0x4000;
    static constexpr std::size_t kStackBytes = 0x40000;
    static constexpr std::size_t kPreallocatedBytes = 0x10000;

    ThreadAttributes();
    ~ThreadAttributes();
    ThreadAttributes(const ThreadAttributes&) = delete;
    ThreadAttributes& operator=(const ThreadAttributes&) = delete;

    /// False when an attribute could not be set; no thread may be made with them then.
    bool isValid() const { return m_valid; }
    const pthread_attr_t* get() const { return &m_attributes; }

    /// Destroys them before their time. Returns what the system said: 0, or an error number.
    int destroy();

private:
    bool setAll();

    pthread_attr_t m_attributes;
    bool m_initialised = false;
    bool m_valid = false;
};

} // namespace System
