#pragma once

#include "devices/SerialLineIdentities.h"
#include "serial/SerialLine.h"

namespace headunit {

/// A line with a plug that connects its two wires: what the unit writes comes back. With the plug pulled
/// out, what it writes is lost.
class LoopbackLine : public SerialLine {
public:
    explicit LoopbackLine(EventLoop& loop) : SerialLine(loop, kLoopbackLine) {}

    /// On at first. On the loop's thread.
    void setConnected(bool connected) { m_connected = connected; }

protected:
    std::size_t room() const override;
    void received(std::string_view bytes) override;

private:
    bool m_connected = true;
};

} // namespace headunit
