#pragma once

#include "platform/DeviceManager.h"

namespace System {

/// A device manager that is a process behind a SOCK_SEQPACKET socket at the device's path: a packet for
/// the request, one for the answer, all numbers 32-bit little-endian.
///
/// Request: command, number of bytes sent, number of bytes that the reply parts take, 0; then the bytes.
/// Answer: result; then the bytes for the reply parts in their order.
namespace ManagerSocket {

/// Whether a manager's socket is what the path leads to.
bool isAt(const char* path);

/// Empty and errno on failure.
Descriptor connect(const char* path);

/// A manager that has gone, or does not answer in time, yields an error number; the next request
/// connects anew.
int request(int socket, std::uint32_t command, const std::vector<SendPart>& send,
            const std::vector<ReplyPart>& reply, ReplySize needed = ReplySize::Any);

} // namespace ManagerSocket
} // namespace System
