#include "line/BinaryLink.h"

#include <algorithm>
#include <sstream>

#include "support/Pattern.h"
#include "support/Waiting.h"

namespace {

constexpr char kPrefix[] = "Prod.testserver: ";
constexpr char kStatusRuntime[] = "### ATTENTION: Command-Runtime for \"s\": [0-9]+ ms";

std::vector<std::string> linesSoFar(const Daemon& daemon) {
    const std::string text = daemon.error();
    const std::size_t startEnd = text.find(kStartEnd);
    if (startEnd == std::string::npos)
        return {"no banner: " + text};
    std::istringstream stream(text.substr(startEnd + sizeof kStartEnd - 1));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (line.rfind(kPrefix, 0) == 0)
            line.erase(0, sizeof kPrefix - 1);
        else
            line.insert(0, "without prefix: ");
        if (!matchesWhole(line, kStatusRuntime))
            lines.push_back(line);
    }
    return lines;
}

} // namespace

DaemonStart withStationLine() {
    DaemonStart start;
    start.stationLine = true;
    return start;
}

std::vector<std::string> errorLines(const Daemon& daemon, std::size_t fewest) {
    std::vector<std::string> lines;
    EXPECT_TRUE(eventually([&] {
        lines = linesSoFar(daemon);
        return lines.size() >= fewest;
    }));
    return lines;
}

void BinaryLinkTest::SetUp() {
    expectFrames(status(false));
    acknowledge();
    adapter.waitUntilTaken();
    ASSERT_FALSE(HasFailure());
}

void BinaryLinkTest::TearDown() {
    if (HasFatalFailure())
        return;
    expectServed();
    EXPECT_TRUE(daemon.isAlive());
    EXPECT_EQ(withoutLateness(errorLines(daemon, m_expectedErrors.size())), m_expectedErrors);
    EXPECT_EQ(daemon.output(), "");
}

void BinaryLinkTest::acknowledge() {
    ++m_acknowledgements;
    adapter.send(kAcknowledgement);
}

/// Without the complaints of acknowledgements that came too late.
std::vector<std::string> BinaryLinkTest::withoutLateness(std::vector<std::string> lines) const {
    const auto complaints = [](const std::vector<std::string>& from) {
        return std::count(from.begin(), from.end(), LinkErrors::kNoAcknowledgement);
    };
    auto late = std::min(complaints(lines) - complaints(m_expectedErrors), m_acknowledgements);
    const auto isLate = [&late](const std::string& line) {
        return line == LinkErrors::kNoAcknowledgement && late-- > 0;
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isLate), lines.end());
    return lines;
}

void BinaryLinkTest::expectFrames(const std::string& frames) {
    EXPECT_EQ(adapter.receive(frames.size()), frames);
}

void BinaryLinkTest::expectExchange(std::string_view request, const std::string& frames) {
    expectReply(std::string(request).append(kAcknowledgement), frames);
}

void BinaryLinkTest::expectReply(std::string_view request, const std::string& frames) {
    SCOPED_TRACE("request " + testing::PrintToString(std::string(request)));
    adapter.send(request);
    expectFrames(frames);
}

void BinaryLinkTest::expectServed() {
    expectExchange(kStatusRequest, status(true));
    adapter.waitUntilTaken();
}

void BinaryLinkTest::expectReturn() {
    expectFrames(repetitionFrames() + status(true));
    acknowledge();
    expectServed();
}

void BinaryLinkTest::expectErrors(std::initializer_list<std::string> lines) {
    m_expectedErrors.insert(m_expectedErrors.end(), lines);
}

void BinaryLinkTest::expectErrors(const std::vector<std::string>& lines) {
    m_expectedErrors.insert(m_expectedErrors.end(), lines.begin(), lines.end());
}
