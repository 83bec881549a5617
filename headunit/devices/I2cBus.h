#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "devices/Eeprom.h"
#include "devices/ManagerPackets.h"
#include "devices/PortExpander.h"
#include "devices/TemperatureSensor.h"
#include "wire/I2cRequests.h"

namespace headunit {

/// What the manager of an I2C bus does with the packets of its clients, without the sockets: it knows
/// the chips on the bus, its clock, and who holds it. Not synchronised.
///
/// A transfer without a stop condition leaves the bus to its client: everybody else is refused with
/// EPERM until that client ends a transfer with a stop, addresses a chip that is not there, or leaves.
class I2cBus {
public:
    using Client = const void*; ///< whatever tells one connection from another; never null

    static constexpr std::uint32_t kSetSpeed = System::I2cRequest::kSetBusSpeed;
    static constexpr std::uint32_t kSend = System::I2cRequest::kSend;
    static constexpr std::uint32_t kReceive = System::I2cRequest::kReceive;
    static constexpr std::uint32_t kCombined = System::I2cRequest::kSendReceive;

    static constexpr std::uint32_t kSevenBitAddresses =
        System::I2cRequest::kSevenBits;                 ///< the one address format
    static constexpr std::uint32_t kSlowSpeed = 100000; ///< bits per second
    static constexpr std::uint32_t kFastSpeed = 400000;
    static constexpr std::uint32_t kLongestTransfer = 65536; ///< bytes each way; more gives ENOMEM

    /// One chip and the address at which it is looked for.
    struct Chip {
        std::string_view name;
        std::uint32_t address;
        I2cSlave& slave;
        bool present = true;
    };

    I2cBus();
    I2cBus(const I2cBus&) = delete;
    I2cBus& operator=(const I2cBus&) = delete;

    /// The answer's packet to a request's packet. EINVAL for what is no request, ENOTTY for a command
    /// that the manager does not have, EIO for an address without a chip.
    std::string answer(Client client, std::string_view packet);

    /// Frees the bus when this client holds it.
    void left(Client client);

    /// The next `count` requests are answered with this result and nothing else happens. Takes the place
    /// of an earlier order.
    void orderResult(std::int32_t result, unsigned count);

    std::uint32_t speed() const { return m_speed; }
    bool isHeld() const { return m_holder != nullptr; }

    /// Since the start, and how many of them had a result other than 0.
    std::uint64_t requests() const { return m_requests; }
    std::uint64_t refused() const { return m_refused; }

    std::array<Chip, 3>& chips() { return m_chips; }

    /// Null when there is no such chip.
    Chip* findChip(std::string_view name);

    Eeprom eeprom;
    TemperatureSensor sensor;
    PortExpander expander;

private:
    struct Transfer;

    ManagerAnswer carryOut(Client client, std::string_view packet, std::uint32_t& room);
    ManagerAnswer setSpeed(Client client, const ManagerRequest& request);
    ManagerAnswer transfer(Client client, const ManagerRequest& request, const Transfer& transfer);
    bool isHeldByOther(Client client) const { return isHeld() && m_holder != client; }
    I2cSlave* slaveAt(std::uint32_t address) const;

    std::array<Chip, 3> m_chips;
    std::uint32_t m_speed = kSlowSpeed;
    Client m_holder = nullptr;
    std::int32_t m_orderedResult = 0;
    unsigned m_ordered = 0; ///< requests that are still to be answered with it
    std::uint64_t m_requests = 0;
    std::uint64_t m_refused = 0;
};

} // namespace headunit
