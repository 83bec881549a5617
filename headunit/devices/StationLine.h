#pragma once

#include "serial/SerialLine.h"

namespace headunit {

/// The line to the test station: a cable with a second terminal at its other end, which the station
/// opens. Bytes pass both ways as fast as the slower side reads, none is lost. While the line is
/// unplugged the station's end stays as it is and what the station sends is lost.
class StationLine : public SerialLine {
public:
    /// Where the station's end is found in the unit's tree.
    static constexpr char kStationLink[] = "/run/headunit/station-line";

    explicit StationLine(EventLoop& loop);

    void install(UnitTree& tree) override;

    /// The terminal that the station opens; the same for the whole life of the unit. Once installed.
    const std::string& stationPath() const { return m_stationEnd.path(); }

protected:
    std::size_t room() const override { return m_stationEnd.room(); }
    void received(std::string_view bytes) override { m_stationEnd.send(bytes); }
    void beforePlug() override { m_stationEnd.discardReceived(); }

private:
    std::size_t roomForStation() const;

    TerminalEnd m_stationEnd;
    NodeLink m_stationLink;
};

} // namespace headunit
