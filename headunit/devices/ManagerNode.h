#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "serial/EventLoop.h"
#include "unit/UnitTree.h"
#include "wire/Descriptor.h"

namespace headunit {

/// What a device manager does with the packets of its clients. Calls come from the loop's thread.
class ManagerRequests {
public:
    using Client = const void*; ///< whatever tells one connection from another; never null

    virtual ~ManagerRequests() = default;

    /// The answer's packet to a request's packet. Nothing when it is to come later, through
    /// ManagerNode::answer(); until then this client asks nothing else.
    virtual std::optional<std::string> requested(Client client, std::string_view packet) = 0;

    /// This client will not be heard of any more. May be said more than once.
    virtual void left(Client client) = 0;
};

/// The socket of a device manager in the unit's tree: passes its clients' packets on and answers them at
/// once, late, or, while it is away, not at all. Installed before the event loop runs; everything else
/// happens on the loop's thread or while the loop does not run. Nothing here blocks. The loop and the
/// one who handles the requests outlive it.
class ManagerNode : private EventSource {
public:
    using Client = ManagerRequests::Client;

    ManagerNode(EventLoop& loop, ManagerRequests& requests);
    ~ManagerNode() override;

    /// Claims the node and makes its socket. Called once. Throws UnitError.
    void install(UnitTree& tree, const std::string& unitPath);

    bool isThere() const { return static_cast<bool>(m_listener); }

    /// Removes the node and drops every client, also those that wait for an answer. No effect on a node
    /// that is away.
    void goAway();

    /// Makes the node again. Throws UnitError when the name is taken. No effect on a node that is there.
    void comeBack();

    /// From now on answers come so much later than they would.
    void setLate(std::chrono::milliseconds late) { m_late = late; }

    /// The answer's packet to a request that was left open. No effect when the client has left.
    void answer(Client client, std::string packet);

private:
    class Connection;

    int descriptor() const override { return m_listener.get(); }
    short awaitedEvents() const override;
    void onEvents(short events) override;
    void sweep();

    EventLoop& m_loop;
    ManagerRequests& m_requests;
    std::string m_path; ///< of the node on the host
    System::Descriptor m_folder;
    System::Descriptor m_listener;
    std::chrono::milliseconds m_late{0};
    std::vector<std::unique_ptr<Connection>> m_connections;
    Timer m_sweep; ///< removes the connections that have ended
};

} // namespace headunit
