#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "control/ControlCommands.h"
#include "control/ControlSocket.h"
#include "serial/EventLoop.h"
#include "unit/UnitTree.h"

namespace headunit {

/// Answers at the unit's control socket, one line a connection. Made and destroyed while the loop does
/// not run, served on the loop's thread; the loop, the tree and the commands outlive it. Nobody can hold
/// it up: connections are few, short-lived, and never waited for.
class ControlServer : private EventSource {
public:
    /// Throws UnitError when another headunit serves this tree or the socket cannot be made.
    ControlServer(EventLoop& loop, UnitTree& tree, ControlCommands& commands);
    ~ControlServer() override;

private:
    class Connection;

    int descriptor() const override { return m_socket.listener.get(); }
    short awaitedEvents() const override;
    void onEvents(short events) override;
    void sweep();

    EventLoop& m_loop;
    ControlCommands& m_commands;
    std::string m_path;
    ControlSocket m_socket;
    std::vector<std::unique_ptr<Connection>> m_connections;
    Timer m_sweep; ///< removes the connections that have ended
};

} // namespace headunit
