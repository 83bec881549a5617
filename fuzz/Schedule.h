#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// What comes over a serial line, and when, in milliseconds since the beginning; a time that nobody
/// waits for.
class Schedule {
public:
    enum Kind {
        Byte,
        HangUp, ///< what reads then fails once
        Taking  ///< somebody else within the unit closes the port
    };
    struct Arrival {
        std::uint64_t time;
        Kind kind;
        char byte;
    };

    /// Nothing comes for a while.
    void pause(std::uint64_t milliseconds) { m_end += milliseconds; }
    void send(std::string_view bytes) {
        for (const char byte : bytes)
            m_arrivals.push_back({m_end, Byte, byte});
    }
    void end(Kind kind) { m_arrivals.push_back({m_end, kind, '\0'}); }

    /// A reader of the schedule, with its own clock.
    class Reader {
    public:
        explicit Reader(const Schedule& schedule) : m_arrivals(&schedule.m_arrivals) {}

        std::uint64_t now() const { return m_now; }
        bool isAtEnd() const { return m_at == m_arrivals->size(); }
        /// Whether something has come.
        bool isReady() const { return !isAtEnd() && next().time <= m_now; }
        bool isReady(Kind kind) const { return isReady() && next().kind == kind; }
        const Arrival& next() const { return (*m_arrivals)[m_at]; }
        void take() { ++m_at; }

        /// Lets time pass until something has come, or so many milliseconds have passed: what comes with
        /// the last of them comes too late. False when nothing has come in time.
        bool wait(std::uint64_t limit) {
            if (isReady())
                return true;
            const std::uint64_t deadline = m_now + limit;
            const bool isInTime = !isAtEnd() && next().time < deadline;
            m_now = isInTime ? next().time : deadline;
            return isInTime;
        }

    private:
        const std::vector<Arrival>* m_arrivals;
        std::size_t m_at = 0;
        std::uint64_t m_now = 0;
    };

private:
    std::vector<Arrival> m_arrivals;
    std::uint64_t m_end = 0;
};
