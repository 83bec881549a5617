#pragma once

#include <cstdint>
#include <string>

/// How an operation on a device ended.
struct DeviceResult {
    std::int32_t code =
        0;               ///< 0 success, otherwise an errno, a bus manager's result or one of DeviceError
    std::string message; ///< empty on success

    bool failed() const { return code != 0; }
};

/// The program's own codes, beside the system's error numbers.
namespace DeviceError {

constexpr std::int32_t kNotUsable = 0x400; ///< the object is not in a state that allows the operation
constexpr std::int32_t kBaudRate = 0x501;
constexpr std::int32_t kDataBits = 0x502;
constexpr std::int32_t kStopBits = 0x503;
constexpr std::int32_t kParity = 0x504;
constexpr std::int32_t kNoSuchChannel = 0x505;

} // namespace DeviceError
