#include "commands/UnitPeers.h"

namespace headunit {

UnitPeers::UnitPeers(UnitTree& tree, const std::vector<std::string>& wantedMedia)
    : m_control(m_loop, tree, m_commands) {
    m_devices.install(tree, wantedMedia);
    m_thread = std::thread([this] { m_loop.run(); });
}

UnitPeers::~UnitPeers() {
    m_loop.stop();
    m_thread.join();
}

} // namespace headunit
