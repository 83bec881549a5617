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

struct ShownCommand {
    std::string line;
    std::string output;
};

bool isStationCommand(const std::string& line) {
    return line.rfind(std::string(kPrompt) + kStation, 0) == 0;
}

/// The commands of the first fenced block that begins with one.
std::vector<ShownCommand> shownCommands(std::istream& document) {
    std::vector<ShownCommand> commands;
    std::string previous;
    for (std::string line; std::getline(document, line); previous = line) {
        const bool begins = commands.empty() && previous.rfind(kFence, 0) == 0;
        if (isStationCommand(line) && (begins || !commands.empty()))
            commands.push_back({line.substr(sizeof kPrompt - 1), ""});
        else if (!commands.empty() && line.rfind(kFence, 0) == 0)
            return commands;
        else if (!commands.empty())
            commands.back().output += line + "\n";
    }
    return {};
}

/// What a terminal would show.
std::string run(const std::string& line) {
    const std::string command = "{ station" + line.substr(sizeof kStation - 1) + "\n} 2>&1";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 4096> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), pipe.get()))
        output.append(bytes.data(), count);
    return output;
}

std::string withoutStamps(const std::string& text) {
    return replaceAll(text, kBuildStampPattern, "{build}");
}

class ReadmeExampleTest : public DaemonTest {};

TEST_F(ReadmeExampleTest, PrintsWhatTheReadmeShows) {
    std::ifstream document(README_DOCUMENT);
    ASSERT_TRUE(document) << README_DOCUMENT;
    const auto commands = shownCommands(document);
    ASSERT_FALSE(commands.empty());
    for (const ShownCommand& command : commands) {
        SCOPED_TRACE(command.line);
        EXPECT_EQ(withoutStamps(run(command.line)), withoutStamps(command.output));
    }
}

} // namespace
