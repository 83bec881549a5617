#include "support/WlanUnit.h"

#include <filesystem>

#include "wire/LittleEndian.h"

namespace {

constexpr std::uint32_t kHostCommand = 0xC01C697B;
constexpr std::uint32_t kControlHeader = 16;
constexpr std::uint32_t kPrivateRequest = 28;
constexpr std::uint32_t kBuffer = 259;
constexpr std::uint32_t kParts = kControlHeader + kPrivateRequest + kBuffer;

constexpr std::size_t kHeader = 8;
constexpr std::size_t kCommandAt = 4;

} // namespace

WlanUnit::WlanUnit() {
    std::filesystem::create_directories(std::filesystem::path(kWlanManager).parent_path());
    std::filesystem::create_directories(std::filesystem::path(kWlanDriver).parent_path());
    write(kWlanDriver, "");
    m_manager = std::make_unique<ScriptedManager>(kWlanManager);
    // A reply that another case did not fetch.
    open();
    Bytes rest;
    command().sdioGet(1, rest);
    command().sdioClose();
}

void WlanUnit::open() {
    const Response response(command().sdioOpen());
    ASSERT_EQ(response->code, 0u) << response->message;
}

void WlanUnit::removeManager() {
    m_manager.reset();
    remove(kWlanManager);
}

Bytes hostMessage(std::uint16_t code, std::uint16_t size, std::uint16_t sequence, std::uint16_t result,
                  const Bytes& data) {
    Bytes message(kHeader);
    std::size_t at = 0;
    for (const std::uint16_t number : {code, size, sequence, result}) {
        putLittleEndian16(message.data() + at, number);
        at += sizeof number;
    }
    message.insert(message.end(), data.begin(), data.end());
    return message;
}

Bytes hostMessage(std::uint16_t code, std::uint16_t sequence, std::uint16_t result, const Bytes& data) {
    return hostMessage(code, static_cast<std::uint16_t>(kHeader + data.size()), sequence, result, data);
}

Bytes wlanRequest(const Bytes& command) {
    Bytes buffer = joined({littleEndian({kBuffer - 4}), command});
    buffer.resize(kBuffer);
    return joined({littleEndian({0, kParts, kParts, 0}),
                   // The device control: type 0x106 and its size in 16 bits each, then 32 bits each.
                   {0x06, 0x01, 0x10, 0x00},
                   littleEndian({kHostCommand, 48, 0}),
                   // The private request.
                   {'u', 'a', 'p', '0', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                   littleEndian({kHostCommand, kBuffer, 1}),
                   buffer});
}

Bytes wlanReply(const Bytes& reply) {
    Bytes buffer = joined({Bytes(kCommandAt, 0xEE), reply});
    buffer.resize(kBuffer);
    return joined({Bytes(kControlHeader + kPrivateRequest, 0xEE), buffer});
}
