#pragma once

#include <utility>

namespace System {

/// Owns one file descriptor and closes it exactly once. Move-only; empty (-1) by default.
/// Not synchronised: one thread at a time per object.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

    /// Gives the descriptor away without closing it.
    int release() { return std::exchange(m_descriptor, -1); }

    /// Closes what is owned and returns 0 or the error number that closing failed with; 0 when empty.
    int close();

    /// Closes what is owned and takes `descriptor` instead. `errno` is left as it was.
    void reset(int descriptor = -1);

private:
    int m_descriptor = -1;
};

} // namespace System
