#include "commands/I2CAccess.h"

#include "devices/I2CHandler.h"

namespace I2CAccess {
namespace {

constexpr unsigned kSlow = 100;
constexpr unsigned kFast = 400;
constexpr unsigned kHertzPerKiloHertz = 1000;

constexpr char kInvalidBus[] = "Bus number %d is invalid";
constexpr char kOpenFailed[] = "Failed to open Bus with Error-Code %d";
constexpr char kWithErrorCode[] = "%s, errorcode: %d";
constexpr char kUnknownAttributeText[] = "Attribute ID %d is unknown";
constexpr char kUnknownValueText[] = "Attribute Value %d for AttributeId %d is unknown";
constexpr char kUnsupportedSpeedText[] = "Clockspeed of %d is not supported";

} // namespace

I2c* openBus(int bus, OpenFailure report, std::unique_ptr<ProcessResponse>& refusal) {
    I2CHandler::BusInfo* info = nullptr;
    const DeviceResult result = I2CHandler::getBusInfo(static_cast<unsigned>(bus), &info);
    if (info == nullptr) {
        refusal = std::make_unique<ProcessResponse>(kNoSuchBus, kInvalidBus, bus);
        return nullptr;
    }
    if (!result.failed())
        return info->i2c.get();
    refusal.reset(report == OpenFailure::CodeOnly
                      ? new ProcessResponse(kBusError, kOpenFailed, result.code)
                      : failure(kBusError, result));
    return nullptr;
}

ProcessResponse* failure(std::uint32_t code, const DeviceResult& result) {
    return new ProcessResponse(code, kWithErrorCode, result.message.c_str(), result.code);
}

ProcessResponse* outcome(const DeviceResult& result) {
    return result.failed() ? failure(kBusError, result) : new ProcessResponse(ProcessResponse::kSuccess);
}

ProcessResponse* unknownAttribute(int attribute) {
    return new ProcessResponse(kUnknownAttribute, kUnknownAttributeText, attribute);
}

ProcessResponse* setStopCondition(I2c& bus, unsigned char value) {
    if (value > 1)
        return new ProcessResponse(ProcessResponse::kGenericError, kUnknownValueText, value,
                                   StopCondition);
    if (value == 0)
        bus.disableStopBit();
    else
        bus.enableStopBit();
    return nullptr;
}

ProcessResponse* setBusSpeed(I2c& bus, unsigned kiloHertz, std::uint32_t errorCode) {
    if (kiloHertz != kSlow && kiloHertz != kFast)
        return new ProcessResponse(kSpeedError, kUnsupportedSpeedText, static_cast<int>(kiloHertz));
    const DeviceResult result = bus.setBusSpeed(kiloHertz * kHertzPerKiloHertz);
    return result.failed() ? failure(errorCode, result) : nullptr;
}

} // namespace I2CAccess
