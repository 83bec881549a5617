#pragma once

#include <cstddef>

/// Keeps one request from taking the memory that the daemon needs to live.
///
/// Some systems grant every allocation and end the process later, when the memory is used. So whoever
/// lets a peer decide how much is allocated announces it here first.
class MemoryGuard {
public:
    /// Throws std::bad_alloc when `bytes` more would leave the system short. Amounts below
    /// `kFreeOfCheck` are not looked at. Any thread; costs some microseconds.
    static void require(std::size_t bytes);

    /// The same for many small amounts: looks only when their sum has grown by another `kFreeOfCheck`.
    void add(std::size_t bytes);

    static constexpr std::size_t kFreeOfCheck = std::size_t{4} << 20;

private:
    std::size_t m_unchecked = 0;
};
