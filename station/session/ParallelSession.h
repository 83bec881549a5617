#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "session/Session.h"

namespace station {

/// Several links to the same unit, for a unit that answers each of them in its turn: while one command
/// is answered the next ones are on their way. Only one link is opened unless more are wanted.
class ParallelSession : public Session {
public:
    /// Links beyond these have nothing to do: the unit carries out one command at a time.
    static constexpr std::size_t kMostLinks = 4;

    /// Connects. Throws `Failure`.
    using Open = std::function<std::unique_ptr<Session>()>;

    /// Opens the first link. Throws `Failure`.
    explicit ParallelSession(Open open);

    /// A unit that takes fewer links is served over those that it takes.
    std::size_t widen() override;

    void begin(const std::string& name, const std::vector<std::string>& arguments) override;
    Answer finish(const InfoSink& onInfo) override;
    void abandon() override;

private:
    Open m_open;
    std::vector<std::unique_ptr<Session>> m_links;
    std::vector<Session*> m_free; // the one to be taken next stands last
    std::deque<Session*> m_underWay;
    bool m_isWide = false;
};

} // namespace station
