#include "devices/I2CHandler.h"

std::map<unsigned, std::unique_ptr<I2CHandler::BusInfo>> I2CHandler::busInfos;
bool I2CHandler::initialized = false;

void I2CHandler::initBusInfos() {
    if (initialized)
        return;
    auto bus = std::make_unique<BusInfo>();
    bus->path = "/dev/i2c0";
    busInfos.emplace(0, std::move(bus));
    initialized = true;
}

DeviceResult I2CHandler::getBusInfo(unsigned bus, BusInfo** info) {
    initBusInfos();
    const auto found = busInfos.find(bus);
    *info = found == busInfos.end() ? nullptr : found->second.get();
    if (*info == nullptr)
        return {};
    if (!(*info)->i2c)
        (*info)->i2c = std::make_unique<I2c>();
    return (*info)->i2c->open((*info)->path);
}
