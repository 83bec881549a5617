#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/Pattern.h"

namespace {

constexpr char kPrompt[] = "$ ";
constexpr char kStation[] = "build/release/bin/station";
constexpr char kFence[] = "```";
constexpr char kStationTarget[] = "serial:/run/headunit/station-line";

struct ShownCommand {
    std::string line;
    std::string output;
};

bool isStationCommand(const std::string& line) {
    return line.rfind(std::string(kPrompt) + kStation, 0) == 0;
}

/// The commands of the fenced blocks that begin with one.
std::vector<ShownCommand> shownCommands(std::istream& document) {
    std::vector<ShownCommand> commands;
    bool inside = false;
    std::string previous;
    for (std::string line; std::getline(document, line); previous = line) {
        const bool begins = previous.rfind(kFence, 0) == 0;
        inside = line.rfind(kFence, 0) != 0 && (inside || (begins && isStationCommand(line)));
        if (inside && isStationCommand(line))
            commands.push_back({line.substr(sizeof kPrompt - 1), ""});
        else if (inside)
            commands.back().output += line + "\n";
    }
    return commands;
}

/// What a terminal would show. The line's terminal has a number of its own each time.
std::string run(const std::string& line) {
    const std::string here = replaceAll(line, "serial:/dev/pts/[0-9]+", kStationTarget);
    const std::string command = "{ station" + here.substr(sizeof kStation - 1) + "\n} 2>&1";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 4096> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), pipe.get()))
        output.append(bytes.data(), count);
    return output;
}

/// Without the seconds, which do not travel in binary frames.
constexpr char kShortStampPattern[] = "[0-9]{4}/[0-9]{2}/[ 0-9][0-9] [0-9]{2}:[0-9]{2}";

std::string withoutStamps(const std::string& text) {
    return replaceAll(replaceAll(text, kBuildStampPattern, "{build}"), kShortStampPattern, "{build}");
}

TEST(ReadmeExampleTest, PrintsWhatTheReadmeShows) {
    DaemonStart start;
    start.stationLine = true;
    const Daemon daemon(start);
    // What the station says of the announcement that waits for the first one to come is not shown.
    run(std::string(kStation) + " --target " + kStationTarget + " --wait-startup status");
    std::ifstream document(README_DOCUMENT);
    ASSERT_TRUE(document) << README_DOCUMENT;
    const auto commands = shownCommands(document);
    ASSERT_GE(commands.size(), 4U);
    for (const ShownCommand& command : commands) {
        SCOPED_TRACE(command.line);
        EXPECT_EQ(withoutStamps(run(command.line)), withoutStamps(command.output));
    }
}

} // namespace
