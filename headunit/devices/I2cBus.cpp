#include "devices/I2cBus.h"

#include <algorithm>
#include <cerrno>
#include <optional>

namespace headunit {

/// What the header of a request asks for.
struct I2cBus::Transfer {
    std::uint32_t address;
    std::uint32_t format;
    std::uint32_t sendLength;
    std::uint32_t receiveLength;
    bool stop;
    std::size_t headerSize;
    bool answered; ///< whether the answer begins with the header
};

namespace {

constexpr std::uint32_t kEepromAddress = 0x50;
constexpr std::uint32_t kSensorAddress = 0x48;
constexpr std::uint32_t kExpanderAddress = 0x20;

constexpr std::size_t kSpeedSize = 4;
constexpr std::size_t kPlainHeader = 16;
constexpr std::size_t kCombinedHeader = 20;

// Where the numbers stand in a header.
constexpr std::size_t kAddress = 0;
constexpr std::size_t kFormat = 4;
constexpr std::size_t kLength = 8; // of what a combined transfer sends, too
constexpr std::size_t kPlainStop = 12;
constexpr std::size_t kReceiveLength = 12; // of a combined transfer
constexpr std::size_t kCombinedStop = 16;

ManagerAnswer failed(int error) {
    return {error, {}};
}

} // namespace

I2cBus::I2cBus()
    : m_chips{{{"eeprom", kEepromAddress, eeprom},
               {"sensor", kSensorAddress, sensor},
               {"expander", kExpanderAddress, expander}}} {}

std::string I2cBus::answer(Client client, std::string_view packet) {
    std::uint32_t room = 0;
    const ManagerAnswer answer = carryOut(client, packet, room);
    ++m_requests;
    m_refused += answer.result != 0 ? 1 : 0;
    return encodeAnswer(answer, room);
}

void I2cBus::left(Client client) {
    if (m_holder == client)
        m_holder = nullptr;
}

void I2cBus::orderResult(std::int32_t result, unsigned count) {
    m_orderedResult = result;
    m_ordered = count;
}

I2cBus::Chip* I2cBus::findChip(std::string_view name) {
    const auto chip = std::find_if(m_chips.begin(), m_chips.end(),
                                   [&](const Chip& known) { return known.name == name; });
    return chip == m_chips.end() ? nullptr : &*chip;
}

I2cSlave* I2cBus::slaveAt(std::uint32_t address) const {
    const auto chip = std::find_if(m_chips.begin(), m_chips.end(), [&](const Chip& known) {
        return known.present && known.address == address;
    });
    return chip == m_chips.end() ? nullptr : &chip->slave;
}

ManagerAnswer I2cBus::carryOut(Client client, std::string_view packet, std::uint32_t& room) {
    const std::optional<ManagerRequest> request = decodeRequest(packet);
    if (m_ordered > 0) {
        --m_ordered;
        return {m_orderedResult, {}};
    }
    if (!request)
        return failed(EINVAL);
    room = request->room;
    const std::uint32_t command = request->command;
    if (command == kSetSpeed)
        return setSpeed(client, *request);
    if (command != kSend && command != kReceive && command != kCombined)
        return failed(ENOTTY);
    const std::string_view header = request->sent;
    const std::size_t headerSize = command == kCombined ? kCombinedHeader : kPlainHeader;
    if (header.size() < headerSize)
        return failed(EINVAL);
    Transfer wanted{littleEndian32(header, kAddress),
                    littleEndian32(header, kFormat),
                    0,
                    0,
                    littleEndian32(header, kPlainStop) != 0,
                    headerSize,
                    command != kSend};
    if (command != kReceive)
        wanted.sendLength = littleEndian32(header, kLength);
    if (command == kReceive)
        wanted.receiveLength = littleEndian32(header, kLength);
    if (command == kCombined) {
        wanted.receiveLength = littleEndian32(header, kReceiveLength);
        wanted.stop = littleEndian32(header, kCombinedStop) != 0;
    }
    return transfer(client, *request, wanted);
}

ManagerAnswer I2cBus::setSpeed(Client client, const ManagerRequest& request) {
    if (request.sent.size() != kSpeedSize)
        return failed(EINVAL);
    const std::uint32_t speed = littleEndian32(request.sent, 0);
    if (speed != kSlowSpeed && speed != kFastSpeed)
        return failed(EINVAL);
    if (isHeldByOther(client))
        return failed(EPERM);
    m_speed = speed;
    return {};
}

ManagerAnswer I2cBus::transfer(Client client, const ManagerRequest& request, const Transfer& transfer) {
    const std::uint64_t expectedRoom =
        transfer.answered ? transfer.headerSize + std::uint64_t{transfer.receiveLength} : 0;
    if (transfer.format != kSevenBitAddresses || request.room < expectedRoom ||
        request.sent.size() != transfer.headerSize + std::uint64_t{transfer.sendLength})
        return failed(EINVAL);
    if (transfer.sendLength > kLongestTransfer || transfer.receiveLength > kLongestTransfer)
        return failed(ENOMEM);
    if (isHeldByOther(client))
        return failed(EPERM);
    m_holder = transfer.stop ? nullptr : client;
    I2cSlave* slave = slaveAt(transfer.address);
    if (slave == nullptr) {
        m_holder = nullptr; // a master gives up with a stop when nobody acknowledges
        return failed(EIO);
    }
    const std::string_view header = request.sent.substr(0, transfer.headerSize);
    ManagerAnswer answer;
    if (request.command != kReceive)
        slave->write(request.sent.substr(transfer.headerSize));
    if (transfer.answered)
        answer.bytes.append(header).append(slave->read(transfer.receiveLength));
    return answer;
}

} // namespace headunit
