#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Link.h"
#include "line/Adapter.h"
#include "support/CallFaults.h"
#include "support/Daemon.h"

/// What a row needs of the daemon that another row's daemon does not have.
struct Needs {
    bool ownDaemon = false;
    std::vector<DaemonStart::Limit> limits = {};
    bool callFaults = false;
};

/// A daemon and the far end of its station's line.
class Bench {
public:
    /// Returns when the line's station has been greeted and each device that stays open once it has been
    /// used is open. `serial` says what the line speaks.
    Bench(Link serial, const Needs& needs);

    Link serial() const { return m_serial; }
    const Daemon& daemon() const { return *m_daemon; }
    Adapter& line() { return m_line; }
    CallFaults& faults() { return *m_faults; }

    /// Takes in what the daemon says on a line that has come back, and acknowledges it where it is to be
    /// acknowledged.
    void expectGreeting();

    /// The line goes and comes back, and the station is greeted.
    void replug();

    /// After bytes that may have left the line in the middle of a request or of an answer: asks for a
    /// marker, and again where that was lost, and takes in all that comes until its answer, which is the
    /// last that comes. Returns the number of bytes.
    std::size_t resynchronise();

    /// How often a marker has been asked for.
    unsigned markers() const { return m_marker; }

    /// The descriptors and threads that the daemon has while nobody asks anything of it.
    std::size_t descriptors() const { return m_descriptors; }
    std::size_t threads() const { return m_threads; }

    std::string statusLine() const;

private:
    void expectAnnouncement();

    const Link m_serial;
    Adapter m_line;
    std::unique_ptr<CallFaults> m_faults;
    std::unique_ptr<Daemon> m_daemon;
    std::string m_buildStamp;
    std::size_t m_descriptors = 0;
    std::size_t m_threads = 0;
    unsigned m_marker = 0;
};
