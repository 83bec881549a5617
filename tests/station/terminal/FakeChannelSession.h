#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "session/Session.h"

namespace station {

/// A unit with a serial line on channel 1, at the other end of a session: it takes every request,
/// remembers it, and gives a fetch what the test has put ready. A test may step in.
class FakeChannelSession : public Session {
public:
    void begin(const std::string& name, const std::vector<std::string>& arguments) override;
    Answer finish(const InfoSink& onInfo) override;

    /// Called with the request's words and its number, from 1 on, before it is carried out. May throw,
    /// or give an answer in place of the unit's.
    std::function<std::optional<Answer>(const std::string& request, std::size_t number)> before;

    /// What the next fetches bring, one after the other; then nothing.
    std::deque<std::string> incoming;

    /// Said ahead of every answer.
    std::vector<std::string> infos;

    /// The requests so far, with one entry "getall 1 (N times)" for several in a row.
    std::vector<std::string> requests() const;

    std::size_t count(const std::string& request) const;

private:
    std::vector<std::string> m_requests;
};

} // namespace station
