#include "devices/ManagerPackets.h"

namespace headunit {
namespace {

/// Where the parts of a request stand.
enum Part : std::size_t { Command = 0, SentSize = 4, Room = 8, Reserved = 12, Sent = 16 };

} // namespace

std::optional<ManagerRequest> decodeRequest(std::string_view packet) {
    if (packet.size() < Sent || littleEndian32(packet, Reserved) != 0 ||
        littleEndian32(packet, SentSize) != packet.size() - Sent)
        return std::nullopt;
    return ManagerRequest{littleEndian32(packet, Command), packet.substr(Sent),
                          littleEndian32(packet, Room)};
}

std::string encodeAnswer(const ManagerAnswer& answer, std::uint32_t room) {
    std::string packet;
    appendLittleEndian32(packet, static_cast<std::uint32_t>(answer.result));
    return packet.append(answer.bytes, 0, room);
}

} // namespace headunit
