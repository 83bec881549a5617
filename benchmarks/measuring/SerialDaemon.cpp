#include "measuring/SerialDaemon.h"

#include <cstdlib>

#include "measuring/SerialPeer.h"

namespace Measuring {

namespace {

constexpr char kNode[] = "/dev/usbserialadapter1";
constexpr char kSupplierVariable[] = "FIRST_TIER_SUPPLIER";

/// What the daemon opens is there before it starts.
Daemon startOn(const TerminalPair& line, const std::string& program) {
    line.takePlaceOf(kNode);
    ::unsetenv(kSupplierVariable);
    return Daemon(program);
}

} // namespace

SerialDaemon::SerialDaemon(const std::string& program) : m_daemon(startOn(m_line, program)) {
    receiveFrame();
    m_line.send(kAcknowledgement);
}

std::string_view SerialDaemon::exchange(std::string_view request) {
    m_line.send(request);
    receiveFrame();
    m_line.send(kAcknowledgement);
    return m_frame;
}

std::string_view SerialDaemon::receiveFrame() {
    m_frame = m_line.receive(1);
    m_frame += m_line.receive(static_cast<unsigned char>(m_frame.front()) - 1U);
    return m_frame;
}

} // namespace Measuring
