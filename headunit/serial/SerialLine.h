#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "serial/NodeLink.h"
#include "serial/TerminalEnd.h"
#include "unit/UnitTree.h"

namespace headunit {

/// One serial line of the unit: its node is a link to a pseudo-terminal, and the derived class is what
/// hangs at the other end of the cable. Installed before the event loop runs; everything else happens on
/// the loop's thread or while the loop does not run. Nothing here blocks. The loop and the tree outlive
/// the line.
class SerialLine {
public:
    struct Identity {
        std::string_view name;     ///< what the user calls the line
        std::string_view unitPath; ///< its node in the unit
    };

    SerialLine(EventLoop& loop, const Identity& identity);
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;
    virtual ~SerialLine() = default;

    std::string_view name() const { return m_identity.name; }
    std::string_view unitPath() const { return m_identity.unitPath; }

    /// Claims the line's names and plugs it in. Called once. Throws UnitError.
    virtual void install(UnitTree& tree);

    bool isPlugged() const { return m_unitEnd.isOpen(); }

    /// Makes a fresh terminal and then its node. Throws UnitError, and leaves the line unplugged, when
    /// one of them cannot be made. No effect on a line that is plugged in.
    void plug();

    /// Removes the node and then hangs up on whoever has the
    /// line open. No effect on a line that is unplugged.
    void unplug();

    /// Over all times that the line was plugged in.
    std::uint64_t bytesFromUnit() const { return m_unitEnd.bytesReceived(); }
    std::uint64_t bytesToUnit() const { return m_unitEnd.bytesSent(); }

protected:
    /// How many bytes of the unit's received() takes now.
    virtual std::size_t room() const = 0;

    /// What the unit wrote; never more than room() said.
    virtual void received(std::string_view bytes) = 0;

    /// Called around plug(), and when the line has been unplugged.
    virtual void beforePlug() {}
    virtual void afterPlug() {}
    virtual void afterUnplug() {}

    TerminalEnd& unitEnd() { return m_unitEnd; }
    const TerminalEnd& unitEnd() const { return m_unitEnd; }

private:
    Identity m_identity;
    std::string m_hostPath; ///< of the node
    TerminalEnd m_unitEnd;
    NodeLink m_node; ///< after the terminal that it leads to, so that it goes first
};

} // namespace headunit
