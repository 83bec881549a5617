#pragma once

#include <atomic>
#include <cstdint>
#include <string>

/// How a request ended. Every command's `process` returns one, newly allocated; the caller owns it.
/// Deleting any of the three classes through a `ProcessResponse*` is fine.
class ProcessResponse {
public:
    static constexpr std::uint32_t kSuccess = 0;
    static constexpr std::uint32_t kNoAnswer = 1;
    static constexpr std::uint32_t kGenericError = 0x01010000;

    explicit ProcessResponse(unsigned int code);
    ProcessResponse(unsigned int code, const char* format, ...) __attribute__((format(printf, 3, 4)));
    ProcessResponse(const ProcessResponse& other);
    ProcessResponse& operator=(const ProcessResponse& other) = default;
    virtual ~ProcessResponse();

    std::uint32_t code;  ///< 0 success, 1 answer nothing, anything else an error sent to the peer
    std::string message; ///< sent ahead of an error answer; never sent on success
    char protocol = 0;   ///< 0, or 't' and 'a' for the classes that carry an answer of their own

    /// Live responses of all three classes, for diagnosis.
    static std::atomic<unsigned int> m_counter;
};
