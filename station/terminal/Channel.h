#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "client/Answer.h"
#include "session/Session.h"
#include "terminal/TerminalOrder.h"

namespace station {

/// A serial line of the unit, as a pipe. Each call is one request: it blocks until the answer and throws
/// `Failure`, `Interrupted`, or `Refused`. One thread at a time; the session must outlive the object.
class Channel {
public:
    /// The most bytes that one fetch brings; then there may be more.
    static constexpr std::size_t kMostFetched = 247;

    Channel(Session& session, const TerminalOrder& order, Session::InfoSink onInfo);

    void open();

    /// 1 to `mostSent()` bytes. The unit does not wait for them to go out.
    void send(std::string_view bytes);

    /// How many bytes the line takes while a fetch waits, at most as many as a fetch brings back; so a
    /// line that gets no more between two fetches keeps up, and so does what it echoes.
    std::size_t mostSent() const { return m_mostSent; }

    /// What has come, be it nothing: then the unit has waited for it some 20 ms.
    std::string fetch();

    void close();

private:
    Answer execute(const std::vector<std::string>& arguments);

    Session& m_session;
    TerminalOrder m_order;
    Session::InfoSink m_onInfo;
    std::string m_number;
    std::size_t m_mostSent;
};

} // namespace station
