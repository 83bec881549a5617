#include "devices/WlanChip.h"

#include <cerrno>

namespace headunit {

struct WlanChip::HostCommand {
    std::uint16_t code;
    std::uint16_t sequence;
    std::string_view payload;
};

namespace {

// Where the fields stand in the whole of a request.
constexpr std::size_t kTypePlace = 0;
constexpr std::size_t kHeadSizePlace = 2;
constexpr std::size_t kControlPlace = 4;
constexpr std::size_t kDataSizePlace = 8;
constexpr std::size_t kNamePlace = WlanChip::kMessageHead;
constexpr std::size_t kNameSize = 16;
constexpr std::size_t kRequestPlace = kNamePlace + kNameSize;
constexpr std::size_t kBufferSizePlace = kRequestPlace + 4;
constexpr std::size_t kFlagPlace = kBufferSizePlace + 4;
constexpr std::size_t kHeads = WlanChip::kMessageHead + WlanChip::kRequestHead;
constexpr std::size_t kCommandPlace = kHeads + WlanChip::kLengthField;

constexpr std::uint32_t kDataSize = 48;
constexpr std::uint32_t kFlag = 1;

// Where the fields stand in a host command.
constexpr std::size_t kCodePlace = 0;
constexpr std::size_t kSizePlace = 2;
constexpr std::size_t kSequencePlace = 4;

// What the chip says of itself.
constexpr std::uint16_t kInterfaceVersion = 1;
constexpr std::uint16_t kChipNumber = 0x8787;
constexpr std::uint16_t kRegion = 0x30;
constexpr std::uint16_t kAntennas = 1;
constexpr std::uint32_t kFirmware = 0x01020300; // 1.2.3.0

constexpr std::size_t kActionSize = 2;
constexpr std::uint16_t kGet = 0;
constexpr std::uint16_t kSet = 1;

/// 0, or why the network stack does not take it.
int faultOf(std::string_view sent) {
    if (sent.size() < kCommandPlace + WlanChip::kCommandHead ||
        littleEndian16(sent, kTypePlace) != WlanChip::kDeviceControl ||
        littleEndian16(sent, kHeadSizePlace) != WlanChip::kMessageHead ||
        littleEndian32(sent, kDataSizePlace) != kDataSize || littleEndian32(sent, kFlagPlace) != kFlag)
        return EINVAL;
    if (littleEndian32(sent, kControlPlace) != WlanChip::kPrivateRequest ||
        littleEndian32(sent, kRequestPlace) != WlanChip::kPrivateRequest)
        return ENOTTY;
    std::string name(WlanChip::kInterface);
    name.resize(kNameSize, '\0');
    if (sent.substr(kNamePlace, kNameSize) != name)
        return ENODEV;
    const std::size_t buffer = sent.size() - kHeads;
    const std::uint32_t length = littleEndian32(sent, kHeads);
    const std::uint16_t size = littleEndian16(sent, kCommandPlace + kSizePlace);
    const bool fits = littleEndian32(sent, kBufferSizePlace) <= buffer &&
                      length <= buffer - WlanChip::kLengthField && size <= length;
    return fits && size >= WlanChip::kCommandHead ? 0 : EINVAL;
}

std::string description(const std::string& address) {
    std::string payload;
    appendLittleEndian16(payload, kInterfaceVersion);
    appendLittleEndian16(payload, kChipNumber);
    payload += address;
    appendLittleEndian16(payload, kRegion);
    appendLittleEndian16(payload, kAntennas);
    appendLittleEndian32(payload, kFirmware);
    return payload;
}

} // namespace

std::string WlanChip::answer(std::string_view packet) {
    ++m_requests;
    std::uint32_t room = 0;
    const ManagerAnswer answer = request(packet, room);
    m_refused += answer.result != 0 ? 1 : 0;
    return encodeAnswer(answer, room);
}

ManagerAnswer WlanChip::request(std::string_view packet, std::uint32_t& room) {
    std::int32_t ordered = 0;
    if (m_result.take(ordered))
        return {ordered, {}};
    const auto decoded = decodeRequest(packet);
    if (!decoded)
        return {EINVAL, {}};
    if (decoded->command != 0)
        return {ENOTTY, {}};
    const std::string_view sent = decoded->sent;
    if (const int fault = faultOf(sent); fault != 0)
        return {fault, {}};
    room = decoded->room;
    const std::string_view command = sent.substr(kCommandPlace);
    const std::uint16_t size = littleEndian16(command, kSizePlace);
    ManagerAnswer answer;
    answer.bytes.append(sent.substr(0, kCommandPlace));
    answer.bytes +=
        carryOut({littleEndian16(command, kCodePlace), littleEndian16(command, kSequencePlace),
                  command.substr(kCommandHead, size - kCommandHead)});
    return answer;
}

/// The chip's whole answer.
std::string WlanChip::carryOut(const HostCommand& command) {
    std::string payload;
    std::uint16_t result = kDone;
    if (!m_refusal.take(result))
        result = perform(command, payload);
    m_refused += result != kDone ? 1 : 0;
    auto size = static_cast<std::uint16_t>(kCommandHead + payload.size());
    if (m_size.take(size) && size > kCommandHead + payload.size())
        payload.resize(size - kCommandHead, '\0');
    std::string answer;
    appendLittleEndian16(answer, static_cast<std::uint16_t>(command.code | kAnswerBit));
    appendLittleEndian16(answer, size);
    appendLittleEndian16(answer, command.sequence);
    appendLittleEndian16(answer, result);
    return answer + payload;
}

std::uint16_t WlanChip::perform(const HostCommand& command, std::string& payload) {
    switch (command.code) {
        case kDescribe:
            payload = description(m_address);
            return kDone;
        case kAddress:
            return accessAddress(command.payload, payload);
        case kReset:
            m_address = kFirstAddress;
            return kDone;
        default:
            return kUnknown;
    }
}

std::uint16_t WlanChip::accessAddress(std::string_view payload, std::string& answer) {
    if (payload.size() != kActionSize + kAddressSize)
        return kWrong;
    const std::uint16_t action = littleEndian16(payload, 0);
    if (action != kGet && action != kSet)
        return kWrong;
    if (action == kSet)
        m_address = payload.substr(kActionSize);
    appendLittleEndian16(answer, action);
    answer += m_address;
    return kDone;
}

} // namespace headunit
