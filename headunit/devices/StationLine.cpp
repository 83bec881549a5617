#include "devices/StationLine.h"

#include <limits>

#include "devices/SerialLineIdentities.h"

namespace headunit {

StationLine::StationLine(EventLoop& loop)
    : SerialLine(loop, kStationLine),
      m_stationEnd(loop, {[this] { return roomForStation(); },
                          [this](std::string_view bytes) { unitEnd().send(bytes); }}) {}

void StationLine::install(UnitTree& tree) {
    m_stationEnd.open();
    m_stationLink = NodeLink(tree.claim(kStationLink), m_stationEnd.path());
    SerialLine::install(tree);
}

std::size_t StationLine::roomForStation() const {
    // Bytes that go into a cable which ends nowhere find no obstacle.
    return isPlugged() ? unitEnd().room() : std::numeric_limits<std::size_t>::max();
}

} // namespace headunit
