#include "serial/SerialLine.h"

#include "unit/UnitError.h"

namespace headunit {

SerialLine::SerialLine(EventLoop& loop, const Identity& identity)
    : m_identity(identity),
      m_unitEnd(loop, {[this] { return room(); }, [this](std::string_view bytes) { received(bytes); }}) {
}

void SerialLine::install(UnitTree& tree) {
    m_hostPath = tree.claim(std::string(unitPath()));
    plug();
}

void SerialLine::plug() {
    if (isPlugged())
        return;
    beforePlug();
    m_unitEnd.open();
    try {
        m_node = NodeLink(m_hostPath, m_unitEnd.path());
    } catch (const UnitError&) {
        m_unitEnd.close();
        throw;
    }
    afterPlug();
}

void SerialLine::unplug() {
    if (!isPlugged())
        return;
    m_node.remove();
    m_unitEnd.close();
    afterUnplug();
}

} // namespace headunit
