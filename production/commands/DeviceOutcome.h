#pragma once

#include <cstdint>

#include "core/Answer.h"
#include "devices/DeviceResult.h"

/// "message, errorcode: code" of what a device has said, under the given status code.
inline Answer deviceFailure(std::uint32_t code, const DeviceResult& result) {
    return failure(code, "%s, errorcode: %d", result.message.c_str(), result.code);
}

/// Such a failure, or a success.
inline Answer deviceOutcome(std::uint32_t code, const DeviceResult& result) {
    return result.failed() ? deviceFailure(code, result) : success();
}
