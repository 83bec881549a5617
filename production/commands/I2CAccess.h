#pragma once

#include <cstdint>

#include "core/Answer.h"
#include "devices/I2c.h"

/// What the two I2C commands share: their codes and texts, and the way to a bus.
namespace I2CAccess {

constexpr std::uint32_t kBusError = 0x07000001;
constexpr std::uint32_t kNoSuchBus = 0x07000005;
constexpr std::uint32_t kUnknownAttribute = 0x0700000B;
constexpr std::uint32_t kSpeedError = 0x0700000D;

constexpr unsigned kHertzPerKiloHertz = 1000;

enum Attribute : unsigned char { StopCondition = 0, BusSpeed = 1 };

/// How a bus that cannot be opened is reported.
enum class OpenFailure { CodeOnly, MessageAndCode };

/// A bus, or why there is none.
struct OpenedBus {
    I2c* i2c;
    Answer refusal;
};

/// Any number may be asked for.
OpenedBus openBus(int bus, OpenFailure report);

/// The answer to a transaction.
Answer outcome(const DeviceResult& result);

/// The refusal of an attribute that there is not.
Answer unknownAttribute(int attribute);

/// 0 switches the stop condition off, 1 on; anything else is refused.
Answer setStopCondition(I2c& bus, unsigned char value);

/// 100 or 400 kHz; `errorCode` is for a bus that does not take it.
Answer setBusSpeed(I2c& bus, unsigned kiloHertz, std::uint32_t errorCode);

} // namespace I2CAccess
