#pragma once

#include <map>
#include <string>

#include "devices/DeviceResult.h"
#include "runtime/Mutex.h"

/// A serial device as a raw channel of 8-bit bytes. No operation throws because of the device or prints
/// anything; what failed is in the result.
///
/// Deliberately without a virtual destructor: who owns a driver knows its class.
class CommInterface {
public:
    CommInterface(const CommInterface&) = delete;
    CommInterface& operator=(const CommInterface&) = delete;

    enum Parity : unsigned { None = 0, Even = 1, Odd = 2 };

    virtual DeviceResult isOpen(bool& open) = 0;
    /// `baud` in bits a second. A device that is open already is closed first.
    virtual DeviceResult open(const std::string& path, unsigned baud, unsigned dataBits,
                              unsigned stopBits, Parity parity) = 0;
    virtual DeviceResult close() = 0;
    /// With a time-out, collects bytes until there are `length` of them or the line has been silent for
    /// that many milliseconds: running out of time is a success, with as many bytes as came. With 0,
    /// waits without limit and returns what the first arrival brought. `count` is set on success only.
    virtual DeviceResult read(unsigned& count, void* buffer, int length, unsigned timeoutMs) = 0;
    /// The same; `mutex`, which the caller holds, is given back while waiting.
    virtual DeviceResult read_locked(unsigned& count, void* buffer, int length, unsigned timeoutMs,
                                     System::Mutex* mutex) = 0;
    /// Hands the bytes to the device once; a device that takes only some of them is a success.
    virtual DeviceResult write(const void* buffer, int length) = 0;
    virtual DeviceResult flush() = 0;

    /// The speed that stands for `baud` in the terminal interface. On failure `speed` stays as it is.
    DeviceResult val2BaudRate(unsigned& speed, unsigned baud);
    /// The character-size flag for `dataBits`. On failure `flag` stays as it is.
    DeviceResult val2DataBitFlag(unsigned& flag, unsigned dataBits);

    static DeviceResult create_commhanderror(std::string message, int code);

protected:
    CommInterface() = default;
    ~CommInterface() = default;

private:
    std::map<unsigned, unsigned> m_baudRates;
    std::map<unsigned, unsigned> m_dataBits;
};
