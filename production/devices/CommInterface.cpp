#include "devices/CommInterface.h"

#include <termios.h>

#include <array>
#include <cstdio>
#include <utility>

namespace {

constexpr char kInvalidBaudRate[] = "Invalid Baudrate %u";
constexpr char kInvalidDataBits[] = "Invalid Databits";

constexpr std::size_t kMessageBytes = 48;

// 300 baud is left out on purpose: no line of the unit may run at it.
constexpr std::array<unsigned, 16> kBaudRates = {50,   75,   110,  134,  150,   200,   600,   1200,
                                                 1800, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

} // namespace

DeviceResult CommInterface::val2BaudRate(unsigned& speed, unsigned baud) {
    for (const unsigned rate : kBaudRates)
        m_baudRates[rate] = rate;
    const auto entry = m_baudRates.find(baud);
    if (entry == m_baudRates.end()) {
        char message[kMessageBytes];
        std::snprintf(message, sizeof message, kInvalidBaudRate, baud);
        return create_commhanderror(message, DeviceError::kBaudRate);
    }
    speed = entry->second;
    return {};
}

DeviceResult CommInterface::val2DataBitFlag(unsigned& flag, unsigned dataBits) {
    m_dataBits = {{5, CS5}, {6, CS6}, {7, CS7}, {8, CS8}};
    const auto entry = m_dataBits.find(dataBits);
    if (entry == m_dataBits.end())
        return create_commhanderror(kInvalidDataBits, DeviceError::kDataBits);
    flag = entry->second;
    return {};
}

DeviceResult CommInterface::create_commhanderror(std::string message, int code) {
    return {code, std::move(message)};
}
