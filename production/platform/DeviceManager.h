#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "wire/Descriptor.h"

namespace System {

/// Requests to the process or driver that owns a device node. A command number says in its two top bits
/// which way data goes: 0x80000000 towards the device, 0x40000000 back. Any thread, but one request at a
/// time per device.
///
/// No request is made twice. One that is interrupted ends with EINTR, whichever way its data goes: the
/// device may have done a part of it already, and reading from a device can change it, too.

/// The longest that a request waits for another process's answer; then it ends with ETIMEDOUT.
constexpr std::chrono::seconds kLongestAnswer{10};

/// One part of the data that travels to the device.
struct SendPart {
    const void* bytes;
    std::size_t size;
};

/// One part of the room for the data that comes back. What does not come is left as it was.
struct ReplyPart {
    void* bytes;
    std::size_t size;
};

/// What a success must bring back.
enum class ReplySize {
    Any,
    Whole ///< less is EPROTO, on systems that tell how much has come
};

/// Opens a node for reading and writing, without waiting. Empty and errno on failure.
Descriptor openDevice(const char* path);

/// One request; returns 0, the manager's result, or the error number that it failed with. A command that
/// carries data towards the device but has no send part takes it from the first reply part. Never more
/// bytes come back than the parts have room for.
int requestDevice(int device, std::uint32_t command, const std::vector<SendPart>& send,
                  const std::vector<ReplyPart>& reply, ReplySize needed = ReplySize::Any);

/// The same with one block of data, which goes whichever way the command says.
int requestDevice(int device, std::uint32_t command, void* data, std::size_t size);

} // namespace System
