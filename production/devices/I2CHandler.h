#pragma once

#include <map>
#include <memory>
#include <string>

#include "devices/I2c.h"

/// The I2C buses that commands may use, each opened on first use and kept. Used by commands only, so by
/// one thread at a time.
class I2CHandler {
public:
    struct BusInfo {
        std::unique_ptr<I2c> i2c; ///< made on first use
        std::string path;
    };

    /// Fills the table, once.
    static void initBusInfos();

    /// `*info` becomes the bus, opened; null, with a success, when there is no such bus.
    static DeviceResult getBusInfo(unsigned bus, BusInfo** info);

private:
    static std::map<unsigned, std::unique_ptr<BusInfo>> busInfos;
    static bool initialized;
};
