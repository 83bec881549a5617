#pragma once

#include <optional>
#include <string>

#include "devices/ManagerNode.h"
#include "devices/WlanChip.h"

namespace headunit {

/// The unit's wireless chip as the network stack shows it: the node of its interface, at which requests
/// are answered by the chip, and the file that tells that its driver is loaded. Installed before the
/// event loop runs; everything else happens on the loop's thread or while the loop does not run. Nothing
/// here blocks. The loop outlives it.
class WlanManager : private ManagerRequests {
public:
    static constexpr char kNode[] = "/dev/io-net/uap0";
    static constexpr char kDriverFile[] = "/dev/shmem/mv8787wl";

    explicit WlanManager(EventLoop& loop) : m_node(loop, *this) {}

    /// Makes both. Called once. Throws UnitError.
    void install(UnitTree& tree) {
        tree.createFile(kDriverFile, "");
        m_node.install(tree, kNode);
    }

    /// The chip stays as it is while the node is away.
    WlanChip& chip() { return m_chip; }

    ManagerNode& node() { return m_node; }

private:
    std::optional<std::string> requested(Client /*client*/, std::string_view packet) override {
        return m_chip.answer(packet);
    }
    void left(Client /*client*/) override {}

    WlanChip m_chip;
    ManagerNode m_node; ///< goes before the chip
};

} // namespace headunit
