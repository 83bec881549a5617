#pragma once

#include <cstdint>
#include <string>

#include "devices/DeviceResult.h"
#include "wire/Descriptor.h"

/// The master's side of an I2C bus (NXP UM10204), through the platform's bus manager. Addresses are the
/// 7 bits without the direction bit; lengths are in bytes; speeds in bits a second. Not synchronised.
class I2c {
public:
    I2c() = default;
    I2c(const I2c&) = delete;
    I2c& operator=(const I2c&) = delete;
    virtual ~I2c();

    /// 0 when the bus was not open.
    virtual int close();
    virtual void disableStopBit();
    virtual void enableStopBit();
    /// Whether a stop condition ends each transaction.
    virtual bool isStopBitEnabled();
    virtual bool isOpen() const;
    /// Does nothing when a bus is open already, whatever its path.
    virtual DeviceResult open(const std::string& path);
    virtual DeviceResult read(unsigned address, void* buffer, unsigned length);
    virtual DeviceResult setBusSpeed(unsigned speed);
    /// What was set last, or 100000: the device is not asked.
    virtual DeviceResult getBusSpeed(unsigned& speed);
    /// Writes, then reads, without giving the bus up in between.
    virtual DeviceResult transfer(unsigned address, const void* sendBuffer, unsigned sendLength,
                                  void* receiveBuffer, unsigned receiveLength);
    virtual DeviceResult write(unsigned address, const void* buffer, unsigned length);

private:
    System::Descriptor m_device;
    std::string m_path;
    std::uint32_t m_addressFormat = 0;
    bool m_stop = false;
    unsigned m_speed = 0;
};
