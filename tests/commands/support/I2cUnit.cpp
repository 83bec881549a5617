#include "support/I2cUnit.h"

#include "commands/IWriteCmd.h"
#include "commands/iReadCmd.h"
#include "devices/I2CHandler.h"

namespace {

constexpr std::uint32_t kSetBusSpeed = 0x80040502;
constexpr std::uint32_t kSend = 0x80100505;
constexpr std::uint32_t kReceive = 0xC0100506;
constexpr std::uint32_t kSendReceive = 0xC0140507;

constexpr std::uint32_t kHeader = 16;
constexpr std::uint32_t kCombinedHeader = 20;
constexpr std::uint32_t kSevenBits = 2;

I2c& bus() {
    I2CHandler::BusInfo* info = nullptr;
    I2CHandler::getBusInfo(0, &info);
    return *info->i2c;
}

} // namespace

const Rows<int, const char*, const char*> kBusFailures = {
    {1, "The master is locked by another connection", "Operation not permitted"},
    {5, "The master send failed", "bad slave address/ bad bus speed/ bus is busy"},
    {12, "Insufficient memory", "The master is locked by another connection"},
    {14, "An error occurred while accessing the data buffer", "Bad address"},
    {22, "Bad message format", "Bad message format"},
    {16, "Device or resource busy", "Device or resource busy"},
    {-1, "Unknown error -1", "Unknown error -1"},
};

I2cUnit::I2cUnit() {
    iReadCmd::getInstance();
    IWriteCmd::getInstance();
    // Cases may also share a process.
    remove(kBusNode);
    bus().close();
    comeBack();
}

void I2cUnit::removeBus() {
    m_manager.reset();
    remove(kBusNode);
}

void I2cUnit::comeBack() {
    m_manager.reset();
    m_manager = std::make_unique<ScriptedManager>(kBusNode);
}

bool I2cUnit::stopCondition() {
    return bus().isStopBitEnabled();
}

unsigned I2cUnit::busSpeed() {
    unsigned speed = 0;
    EXPECT_EQ(bus().getBusSpeed(speed).code, 0);
    return speed;
}

Bytes writeRequest(std::uint32_t address, const Bytes& data, std::uint32_t stop) {
    const auto size = static_cast<std::uint32_t>(data.size());
    return joined({littleEndian({kSend, kHeader + size, 0, 0, address, kSevenBits, size, stop}), data});
}

Bytes readRequest(std::uint32_t address, std::uint32_t count, std::uint32_t stop) {
    return littleEndian({kReceive, kHeader, kHeader + count, 0, address, kSevenBits, count, stop});
}

Bytes transferRequest(std::uint32_t address, const Bytes& data, std::uint32_t count,
                      std::uint32_t stop) {
    const auto size = static_cast<std::uint32_t>(data.size());
    return joined({littleEndian({kSendReceive, kCombinedHeader + size, kCombinedHeader + count, 0,
                                 address, kSevenBits, size, count, stop}),
                   data});
}

Bytes speedRequest(std::uint32_t speed) {
    return littleEndian({kSetBusSpeed, sizeof speed, 0, 0, speed});
}

Bytes readReply(const Bytes& data) {
    return joined({Bytes(kHeader, 0xEE), data});
}

Bytes transferReply(const Bytes& data) {
    return joined({Bytes(kCombinedHeader, 0xEE), data});
}
