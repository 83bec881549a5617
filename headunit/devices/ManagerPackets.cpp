#include "devices/ManagerPackets.h"

namespace headunit {
namespace {

// The layout of a request.
constexpr std::size_t kCommand = 0;
constexpr std::size_t kSentSize = 4;
constexpr std::size_t kRoom = 8;
constexpr std::size_t kReserved = 12;
constexpr std::size_t kSent = 16;

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

} // namespace headunit
