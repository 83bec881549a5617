#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "support/CallFaults.h"
#include "support/KernelRefusal.h"
#include "support/Program.h"

/// Circumstances that a daemon is started under; as a unit starts it when left alone.
struct DaemonStart {
    struct Limit {
        int resource; ///< RLIMIT_...
        rlim_t value;
    };

    std::vector<std::string> arguments; ///< behind the program's name
    std::vector<Limit> limits;
    std::vector<int> closed;           ///< standard streams that are closed
    std::optional<int> standardOutput; ///< in place of the file that `Daemon::output` reads
    std::optional<int> standardError;  ///< in place of the file that `Daemon::error` reads
    std::optional<int> leftOpen;       ///< a descriptor that the starting program forgot to close
    std::vector<KernelRefusal> refusals;
    /// The digits of those of its threads, counted from 1, that it cannot make: the dispatcher's, the
    /// serial front end's, the network's. Not with a sanitizer, whose library wants to be the first.
    std::string missingThreads;
    /// Null when all are to succeed.
    const CallFaults* callFaults = nullptr;
    bool stationLine = false;            ///< else the unit has no adapter plugged in
    std::optional<std::string> supplier; ///< FIRST_TIER_SUPPLIER; not set by default
    bool waitForPort = true;
};

/// The daemon itself, as a child of the test, with its standard streams in files. Killed with this
/// object.
class Daemon {
public:
    /// Returns when the daemon listens, unless told
    /// otherwise; throws std::runtime_error when it does not.
    explicit Daemon(const DaemonStart& start = {});
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    pid_t pid() const { return m_program->pid(); }
    bool isAlive() const { return m_program->isAlive(); }

    /// The exit status, 128 plus the signal that ended it, or -1 when it does not end.
    int waitForEnd() { return m_program->wait(); }

    /// What it has written so far.
    std::string output() const;
    std::string error() const;

    /// Waits until it has written exactly this.
    bool waitForOutput(const std::string& all) const;

    bool waitForError(const std::string& text) const;

    /// Changes one of its limits while it runs; the hard limit stays.
    void limit(int resource, rlim_t value) const;

    /// The stamp that its banner shows.
    std::string buildStamp() const;

private:
    std::string m_outputFile;
    std::string m_errorFile;
    std::optional<Program> m_program;
};

/// Descriptors of a daemon without stations: the standard streams, the watch for the serial adapter, and
/// the listening socket.
constexpr std::size_t kOwnDescriptors = 5;

/// "yyyy/mm/dd hh:mm:ss" with a day that may be padded with a blank.
constexpr char kBuildStampPattern[] = "[0-9]{4}/[0-9]{2}/[ 0-9][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2}";

/// The end of what each daemon writes to standard error at its start: the banner, and that the unit has
/// no hard disks.
constexpr char kStartEnd[] =
    "For authorised use in production and service only."
    "Prod.testserver: BlockDevice /dev/sda0 is not available\n"
    "Prod.testserver: BlockDevice /dev/sdb0 is not available\n";

/// What it says when a command has taken long, which on a busy machine any may.
constexpr char kSlowCommand[] =
    "Prod\\.testserver: ### ATTENTION: Command-Runtime for \"[a-z0-9]*\": [0-9]+ ms\n";

/// Everything that a daemon without trouble writes to standard error.
bool isBannerOnly(const std::string& error);
