#pragma once

#include <cstddef>
#include <cstdint>

namespace headunit {

/// What the Bluetooth driver library asks the chip's node for, as a device manager's commands. A host
/// packet is its type, one byte, and its bytes.
namespace BluetoothRequests {

constexpr char kNode[] = "/dev/sdio0";

/// The chip forgets what it had to say, and belongs to this client until it leaves.
constexpr std::uint32_t kOpen = 0x00000B01;

/// Sends a host packet to the chip.
constexpr std::uint32_t kWrite = 0x80000B02;

/// Answered with the chip's next packet once there is one.
constexpr std::uint32_t kRead = 0x40000B03;

/// Bytes of the longest host packet: its type and 64 KiB.
constexpr std::size_t kLongestPacket = 1 + 65536;

} // namespace BluetoothRequests

} // namespace headunit
