#include "commands/I2CAccess.h"

#include "commands/DeviceOutcome.h"
#include "devices/I2CHandler.h"

namespace I2CAccess {
namespace {

constexpr char kInvalidBus[] = "Bus number %d is invalid";
constexpr char kOpenFailed[] = "Failed to open Bus with Error-Code %d";
constexpr char kUnknownAttributeText[] = "Attribute ID %d is unknown";
constexpr char kUnknownValueText[] = "Attribute Value %d for AttributeId %d is unknown";
constexpr char kUnsupportedSpeedText[] = "Clockspeed of %d is not supported";

} // namespace

OpenedBus openBus(int bus, OpenFailure report) {
    I2CHandler::BusInfo* info = nullptr;
    const DeviceResult result = I2CHandler::getBusInfo(static_cast<unsigned>(bus), &info);
    if (info == nullptr)
        return {nullptr, failure(kNoSuchBus, kInvalidBus, bus)};
    if (!result.failed())
        return {info->i2c.get(), nullptr};
    return {nullptr, report == OpenFailure::CodeOnly ? failure(kBusError, kOpenFailed, result.code)
                                                     : deviceFailure(kBusError, result)};
}

Answer outcome(const DeviceResult& result) {
    return deviceOutcome(kBusError, result);
}

Answer unknownAttribute(int attribute) {
    return failure(kUnknownAttribute, kUnknownAttributeText, attribute);
}

Answer setStopCondition(I2c& bus, unsigned char value) {
    if (value > 1)
        return genericError(kUnknownValueText, value, StopCondition);
    if (value == 0)
        bus.disableStopBit();
    else
        bus.enableStopBit();
    return success();
}

Answer setBusSpeed(I2c& bus, unsigned kiloHertz, std::uint32_t errorCode) {
    constexpr unsigned kSlow = 100;
    constexpr unsigned kFast = 400;
    if (kiloHertz != kSlow && kiloHertz != kFast)
        return failure(kSpeedError, kUnsupportedSpeedText, static_cast<int>(kiloHertz));
    return deviceOutcome(errorCode, bus.setBusSpeed(kiloHertz * kHertzPerKiloHertz));
}

} // namespace I2CAccess
