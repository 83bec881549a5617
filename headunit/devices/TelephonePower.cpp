#include "devices/TelephonePower.h"

namespace headunit {

TelephonePower::TelephonePower(EventLoop& loop, GpioPorts& ports)
    : m_ports(ports),
      m_watch(loop, [this](const std::string& name) { portChanged(name); }),
      m_follow(loop, [this] { follow(); }) {}

void TelephonePower::start(const UnitTree& tree) {
    m_watch.start(tree.hostPath(GpioPorts::kFolder));
    m_wanted = m_ports.levelOr(kSwitch, m_wanted);
}

void TelephonePower::portChanged(const std::string& name) {
    if (name != kSwitch)
        return;
    // A node that is being written may be empty for a moment: then it has not changed yet.
    const char level = m_ports.levelOr(kSwitch, m_wanted);
    if (level == m_wanted || (level != '0' && level != '1'))
        return;
    m_wanted = level;
    m_follow.start(EventClock::now() + kDelay);
}

void TelephonePower::follow() {
    if (m_ports.state(kStatus) == GpioPorts::NodeState::whole)
        m_ports.setLevel(kStatus, m_wanted);
}

} // namespace headunit
