#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "StationProcess.h"
#include "support/Daemon.h"
#include "support/Waiting.h"

namespace station {

constexpr char kLineTarget[] = "serial:/run/headunit/station-line";
constexpr char kPortTarget[] = "tcp:127.0.0.1:15051";

/// One of the ways to a unit, and the daemon that serves it.
struct LinkCase {
    const char* name;
    std::vector<std::string> options;
    bool isSerial;
    DaemonStart start;
    std::vector<std::string> greeting; ///< first run, which takes what the unit says unasked
};

inline void PrintTo(const LinkCase& link, std::ostream* out) {
    *out << link.name;
}

inline DaemonStart startOnTheLine(std::optional<std::string> supplier) {
    DaemonStart start;
    start.stationLine = true;
    start.supplier = std::move(supplier);
    return start;
}

/// Over TCP the unit's line to the station is there, too, and binary.
inline std::vector<LinkCase> allLinks() {
    return {{"Tcp", {"--target", kPortTarget}, false, startOnTheLine(std::nullopt), {"status"}},
            {"Binary",
             {"--target", kLineTarget},
             true,
             startOnTheLine(std::nullopt),
             {"--wait-startup", "status"}},
            {"SerialAscii",
             {"--target", kLineTarget, "--protocol", "ascii"},
             true,
             startOnTheLine("SOLMED"),
             {"--timeout", "3", "status"}}};
}

inline std::string nameOfLink(const testing::TestParamInfo<LinkCase>& info) {
    return info.param.name;
}

/// The same commands over each link to the same unit: whoever calls the program must not have to care
/// about the link. A unit of its own for each case, with a fresh daemon.
class Links : public testing::TestWithParam<LinkCase> {
protected:
    void SetUp() override {
        // What comes before the unit has opened its line is lost.
        ASSERT_TRUE(eventually([] { return run(GetParam().greeting).exitCode == 0; }));
    }

    static Invocation invocation(const std::vector<std::string>& arguments) {
        Invocation invocation;
        invocation.arguments = GetParam().options;
        invocation.arguments.insert(invocation.arguments.end(), arguments.begin(), arguments.end());
        return invocation;
    }

    static Outcome run(const std::vector<std::string>& arguments) {
        return runStation(invocation(arguments));
    }

    static void expectAnswer(const std::vector<std::string>& arguments, const std::string& answer) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.output, answer + "\n") << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.errors, "") << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << testing::PrintToString(arguments);
    }

    static void expectRefusal(const std::vector<std::string>& arguments, const std::string& message,
                              const std::string& code) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.output, "") << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.errors, "Info \"" + message + "\"\nstation: refused: Error 0x" + code + "\n")
            << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.exitCode, 5) << testing::PrintToString(arguments);
    }

    /// The channel that the station itself uses, for the unit.
    static std::string ownChannel() { return GetParam().isSerial ? "3" : "0"; }

    static bool isBinary() { return GetParam().name == std::string("Binary"); }

    /// Does something to the unit as its `headunit control` is told to.
    static void control(const std::string& words) {
        EXPECT_EQ(std::system(("headunit control " + words + " >/dev/null").c_str()), 0);
    }

    /// The link goes and, with `restore`, comes back.
    void cut() const {
        if (GetParam().isSerial)
            control("unplug station");
        else
            ::kill(m_daemon->pid(), SIGKILL);
    }
    void restore() {
        if (GetParam().isSerial)
            control("plug station");
        else
            m_daemon.emplace(GetParam().start);
    }

private:
    std::optional<Daemon> m_daemon{std::in_place, GetParam().start};
};

} // namespace station
