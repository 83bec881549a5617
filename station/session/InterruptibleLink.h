#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "client/Link.h"
#include "session/Interruption.h"

namespace station {

/// A link on which an interruption ends the wait for an answer that does not come soon: the request
/// under way gets `kGrace` to finish, and so does each one that follows.
class InterruptibleLink : public Link {
public:
    static constexpr Seconds kGrace{2};

    InterruptibleLink(std::unique_ptr<Link> link, const Interruption& interruption)
        : m_link(std::move(link)), m_interruption(interruption) {}

    /// What comes now belongs to a request that has not waited yet.
    void beginRequest() { m_end.reset(); }

    void send(std::string_view bytes, const Deadline& deadline) override;

    /// As its base says, and throws `Interrupted`.
    std::optional<std::string> receiveBy(const Deadline& moment) override;

private:
    std::unique_ptr<Link> m_link;
    const Interruption& m_interruption;
    std::optional<Deadline> m_end;
};

} // namespace station
