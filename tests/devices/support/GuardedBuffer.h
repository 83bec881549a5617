#pragma once

#include <array>
#include <string>

/// A buffer of `Bytes` bytes, between others that nobody may write to.
template <int Bytes>
class GuardedBuffer {
public:
    GuardedBuffer() { m_bytes.fill(kGuard); }

    char* data() { return m_bytes.data() + kGuards; }
    static constexpr int size() { return Bytes; }

    std::string first(unsigned count) { return {data(), count}; }

    /// Whether nothing was written but the first `count` bytes.
    bool isUntouchedBut(unsigned count) const {
        for (std::size_t at = 0; at < m_bytes.size(); ++at)
            if ((at < kGuards || at >= kGuards + count) && m_bytes[at] != kGuard)
                return false;
        return true;
    }

private:
    static constexpr std::size_t kGuards = 64;
    static constexpr char kGuard = '\x5A';

    std::array<char, kGuards + Bytes + kGuards> m_bytes;
};
