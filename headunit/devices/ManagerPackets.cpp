#include "devices/ManagerPackets.h"

namespace headunit {
namespace {

// The layout of a request.
constexpr std::size_t kCommand = 0;
constexpr std::size_t kSentSize = 4;
constexpr std::size_t kRoom = 8;
constexpr std::size_t kReserved = 12;
constexpr std::size_t kSent = 16;

constexpr unsigned kNumberSize = 4;
constexpr unsigned kShortNumberSize = 2;
constexpr unsigned kBitsOfByte = 8;
constexpr std::uint32_t kByte = 0xFF;

std::uint32_t numberAt(std::string_view bytes, std::size_t at, unsigned size) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < size; ++i)
        number |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i]))
                  << (i * kBitsOfByte);
    return number;
}

void appendNumber(std::string& bytes, std::uint32_t number, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        bytes += static_cast<char>((number >> (i * kBitsOfByte)) & kByte);
}

} // namespace

std::optional<ManagerRequest> decodeRequest(std::string_view packet) {
    if (packet.size() < kSent || littleEndian32(packet, kReserved) != 0 ||
        littleEndian32(packet, kSentSize) != packet.size() - kSent)
        return std::nullopt;
    return ManagerRequest{littleEndian32(packet, kCommand), packet.substr(kSent),
                          littleEndian32(packet, kRoom)};
}

std::string encodeAnswer(const ManagerAnswer& answer, std::uint32_t room) {
    std::string packet;
    appendLittleEndian32(packet, static_cast<std::uint32_t>(answer.result));
    return packet.append(answer.bytes, 0, room);
}

std::uint32_t littleEndian32(std::string_view bytes, std::size_t at) {
    return numberAt(bytes, at, kNumberSize);
}

std::uint16_t littleEndian16(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint16_t>(numberAt(bytes, at, kShortNumberSize));
}

void appendLittleEndian32(std::string& bytes, std::uint32_t number) {
    appendNumber(bytes, number, kNumberSize);
}

void appendLittleEndian16(std::string& bytes, std::uint16_t number) {
    appendNumber(bytes, number, kShortNumberSize);
}

} // namespace headunit
