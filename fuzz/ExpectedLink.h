#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Schedule.h"

/// What is to come of a schedule by the rules of the binary protocol: which requests are run, and what
/// the station gets. The unit knows the commands of StandInCommands.h.
class ExpectedLink {
public:
    explicit ExpectedLink(const Schedule& schedule);

    /// Those for known commands, in their order, each as long as its first byte says.
    const std::vector<std::string>& requests() const { return m_requests; }
    const std::string& sent() const { return m_sent; }

private:
    struct Received {
        bool hasFailed;
        std::string bytes;
    };

    Received receive(std::size_t count, unsigned silenceMs);
    void serve(unsigned char length);
    void announce();
    void run(const std::string& request);
    void answer(const std::string& frames);
    std::string responseTo(const std::string& request) const;

    Schedule::Reader m_reader;
    bool m_isOpen = false;
    std::vector<std::string> m_requests;
    std::string m_sent;
};
