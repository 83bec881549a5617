#pragma once

#include "platform/DeviceManager.h"

namespace System::I2cDriver {

/// The bus manager's requests, translated for a character device of the kernel's own I2C driver. What
/// that driver cannot do (set the clock, leave out the stop condition) yields EOPNOTSUPP, an address of
/// more than 7 bits, of which that driver would take 7, yields ENXIO, and a command that is none of the
/// bus manager's yields ENOTTY.
int request(int device, std::uint32_t command, const std::vector<SendPart>& send,
            const std::vector<ReplyPart>& reply);

} // namespace System::I2cDriver
