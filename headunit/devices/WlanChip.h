#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "devices/ManagerPackets.h"
#include "devices/StandingOrder.h"

namespace headunit {

/// What the wireless interface does with the packets of its clients, without the sockets: it takes the
/// network stack's private request, hands the host command in it to the chip, and gives back the request
/// with the chip's answer in the command's place. Not synchronised.
class WlanChip {
public:
    static constexpr std::string_view kInterface = "uap0";

    // The parts of the request: a device-control message, the interface's request, the buffer, which is
    // a length and a host command.
    static constexpr std::uint16_t kDeviceControl = 0x106;
    static constexpr std::uint32_t kPrivateRequest = 0xC01C697B;
    static constexpr std::size_t kMessageHead = 16;
    static constexpr std::size_t kRequestHead = 28;
    static constexpr std::size_t kLengthField = 4;
    static constexpr std::size_t kCommandHead = 8;

    // Host commands.
    static constexpr std::uint16_t kDescribe = 0x0003;
    static constexpr std::uint16_t kAddress = 0x004D;
    static constexpr std::uint16_t kReset = 0x00A9;
    static constexpr std::uint16_t kAnswerBit = 0x8000;

    // Their results.
    static constexpr std::uint16_t kDone = 0;
    static constexpr std::uint16_t kWrong = 1;
    static constexpr std::uint16_t kUnknown = 2;

    static constexpr std::size_t kAddressSize = 6;
    static constexpr std::string_view kFirstAddress{"\x02\x00\x00\x00\x87\x01", kAddressSize};

    /// The answer's packet to a request's packet.
    std::string answer(std::string_view packet);

    /// The next requests have this result of the manager, and the chip does not get them.
    void orderResult(std::int32_t result, unsigned count) { m_result.order(result, count); }

    /// The next host commands are answered with this result of the chip and are not carried out.
    void orderRefusal(std::uint16_t result, unsigned count) { m_refusal.order(result, count); }

    /// The next answers of the chip say that they are so many bytes, and are filled up to them.
    void orderSize(std::uint16_t size, unsigned count) { m_size.order(size, count); }

    /// The chip's, six bytes.
    const std::string& address() const { return m_address; }

    /// All since the start, and those that failed: by the manager's result or by the chip's.
    std::uint64_t requests() const { return m_requests; }
    std::uint64_t refused() const { return m_refused; }

private:
    struct HostCommand;

    ManagerAnswer request(std::string_view packet, std::uint32_t& room);
    std::string carryOut(const HostCommand& command);
    std::uint16_t perform(const HostCommand& command, std::string& payload);
    std::uint16_t accessAddress(std::string_view payload, std::string& answer);

    std::string m_address{kFirstAddress};
    StandingOrder<std::int32_t> m_result;
    StandingOrder<std::uint16_t> m_refusal;
    StandingOrder<std::uint16_t> m_size;
    std::uint64_t m_requests = 0;
    std::uint64_t m_refused = 0;
};

} // namespace headunit
