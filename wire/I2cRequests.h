#pragma once

#include <cstdint>

/// The requests of an I2C bus manager, as `requestDevice` takes them. Each begins with a header of
/// 32-bit numbers in the machine's own order; the address format is always `kSevenBits`.
namespace System::I2cRequest {

constexpr std::uint32_t kSetBusSpeed = 0x80040502; ///< header: bits per second
constexpr std::uint32_t kSend = 0x80100505;    ///< header: address, format, length, stop; then the bytes
constexpr std::uint32_t kReceive = 0xC0100506; ///< header: address, format, length, stop
/// Header: address, format, lengths to send and to receive, stop; then the bytes to send.
constexpr std::uint32_t kSendReceive = 0xC0140507;

constexpr std::uint32_t kSevenBits = 2;

} // namespace System::I2cRequest
