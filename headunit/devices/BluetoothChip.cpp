#include "devices/BluetoothChip.h"

#include <utility>

#include "devices/ManagerPackets.h"

namespace headunit {
namespace {

// A command is its number, the size of its parameters, the parameters.
constexpr std::size_t kOpcodeSize = 2;
constexpr std::size_t kCommandHead = 3;

enum Opcode : std::uint16_t { Reset = 0x0C03, ReadLocalVersion = 0x1001, ReadAddress = 0x1009 };
enum Event : char { CommandComplete = 0x0E, CommandStatus = 0x0F };
enum Status : char { Success = 0, UnknownCommand = 0x01, InvalidParameters = 0x12 };

constexpr char kOneMoreCommand = 1; // that the host may send

constexpr char kVersion = 5; // 3.0, of the host interface and of the link
constexpr std::uint16_t kHostRevision = 0x0100;
constexpr std::uint16_t kManufacturer = 0xFFFF; // nobody's
constexpr std::uint16_t kLinkRevision = 0x0200;

constexpr std::string_view kAddress("\x02\x87\x00\x00\x00\x02",
                                    BluetoothChip::kAddressSize); // low first

std::string localVersion() {
    std::string parameters(1, kVersion);
    appendLittleEndian16(parameters, kHostRevision);
    parameters += kVersion;
    appendLittleEndian16(parameters, kManufacturer);
    appendLittleEndian16(parameters, kLinkRevision);
    return parameters;
}

bool isKnown(std::uint16_t opcode) {
    return opcode == Reset || opcode == ReadLocalVersion || opcode == ReadAddress;
}

} // namespace

void BluetoothChip::take(std::string_view packet) {
    if (!packet.empty() && packet.front() == kCommandPacket)
        takeCommand(packet.substr(1));
}

bool BluetoothChip::say(std::string packet) {
    if (m_unsaid.size() >= kMostUnsaid)
        return false;
    m_unsaid.push_back(std::move(packet));
    return true;
}

std::string BluetoothChip::next() {
    std::string packet = std::move(m_unsaid.front());
    m_unsaid.pop_front();
    return packet;
}

std::string BluetoothChip::address() {
    return {kAddress.rbegin(), kAddress.rend()};
}

void BluetoothChip::takeCommand(std::string_view command) {
    ++m_commands;
    if (m_silent || command.size() < kCommandHead)
        return;
    const std::string_view opcode = command.substr(0, kOpcodeSize);
    const std::uint16_t number = littleEndian16(command, 0);
    if (!isKnown(number))
        return refuse(opcode);
    if (command[kOpcodeSize] != 0 || command.size() != kCommandHead)
        return complete(opcode, InvalidParameters); // none of these has any
    if (number == Reset) {
        clear();
        return complete(opcode, Success);
    }
    if (number == ReadAddress)
        return complete(opcode, Success, kAddress);
    complete(opcode, Success, localVersion());
}

void BluetoothChip::complete(std::string_view opcode, char status, std::string_view parameters) {
    std::string whole(1, kOneMoreCommand);
    whole.append(opcode).append(1, status).append(parameters);
    event(CommandComplete, whole);
}

void BluetoothChip::refuse(std::string_view opcode) {
    std::string parameters{UnknownCommand, kOneMoreCommand};
    event(CommandStatus, parameters.append(opcode));
}

void BluetoothChip::event(char code, const std::string& parameters) {
    say(std::string{kEventPacket, code, static_cast<char>(parameters.size())} + parameters);
}

} // namespace headunit
