#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Bench.h"
#include "Link.h"
#include "model/Dice.h"
#include "support/Connection.h"
#include "support/DaemonTest.h"

/// How much a row has done to the daemon.
struct Amount {
    std::size_t requests = 0;
    std::size_t connections = 0;
    std::size_t bytes = 0;
};

/// What a row is given: the daemon that it ill-treats, the link over which, and choices that the seed
/// decides. What it finds wrong it says as a test does, by EXPECT_... and its like.
class Ordeal {
public:
    Ordeal(Bench& bench, Link link, std::uint64_t seed, bool isLong)
        : bench(bench), link(link), dice(seed), m_isLong(isLong) {}

    Bench& bench;
    const Link link;
    Dice dice;
    Amount amount;
    std::string note; ///< what the table does not show

    /// How often; a sanitizer makes everything slower.
    unsigned times(unsigned inShort, unsigned inLong) const {
        constexpr unsigned kSlower = kSanitized ? 4 : 1;
        return std::max(1U, (m_isLong ? inLong : inShort) / kSlower);
    }

    bool isLong() const { return m_isLong; }

    /// The row's station: over TCP a connection of its own, else the line's.
    const ByteStream& station() {
        if (link != Link::Tcp)
            return bench.line();
        if (!m_connection) {
            m_connection.emplace();
            ++amount.connections;
        }
        return *m_connection;
    }

    /// Over TCP the next `station` is another one.
    void leave() { m_connection.reset(); }

    /// Asks over the row's link, where the answer must be the right one.
    void expect(const Spoken& spoken) {
        expectExchange(station(), spoken.sent, spoken.received);
        ++amount.requests;
        amount.bytes += spoken.sent.size() + spoken.received.size();
    }

private:
    const bool m_isLong;
    std::optional<Connection> m_connection;
};
