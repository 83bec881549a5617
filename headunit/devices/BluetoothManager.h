#pragma once

#include <map>
#include <optional>
#include <string>

#include "devices/BluetoothChip.h"
#include "devices/BluetoothRequests.h"
#include "devices/ManagerNode.h"
#include "devices/ManagerPackets.h"
#include "devices/StandingOrder.h"

namespace headunit {

/// The node behind which the unit's Bluetooth chip lies: the driver library opens it, writes packets for
/// the chip and waits for the chip's. Installed before the event loop runs; everything else happens on
/// the loop's thread or while the loop does not run. Nothing here blocks. The loop outlives it.
class BluetoothManager : private ManagerRequests {
public:
    enum class Call { open, write, read };

    explicit BluetoothManager(EventLoop& loop) : m_node(loop, *this) {}

    /// Claims the node and makes its socket. Called once. Throws UnitError.
    void install(UnitTree& tree) { m_node.install(tree, BluetoothRequests::kNode); }

    /// The chip stays as it is while the node is away. What it says goes out with flush().
    BluetoothChip& chip() { return m_chip; }

    ManagerNode& node() { return m_node; }

    bool isOpen() const { return m_opener != nullptr; }

    /// The next so many calls of this kind fail. A read that waits is the first of them.
    void orderFailures(Call call, unsigned count);

    /// Hands the chip's next packet to the read that waits for one.
    void flush();

private:
    std::optional<std::string> requested(Client client, std::string_view packet) override;
    void left(Client client) override;

    bool isToFail(Call call);
    void failReader();
    std::optional<ManagerAnswer> carryOut(Client client, const ManagerRequest& request);
    std::optional<ManagerAnswer> wait(Client client, std::uint32_t room);

    BluetoothChip m_chip;
    Client m_opener = nullptr; ///< null while nobody has opened the chip
    Client m_reader = nullptr; ///< whose read waits; null for none
    std::uint32_t m_room = 0;  ///< of that read's answer
    std::map<Call, StandingOrder<bool>> m_failures;
    ManagerNode m_node; ///< goes before the rest
};

} // namespace headunit
