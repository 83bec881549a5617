#include "core/Diagnostics.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/ErrorOutput.h"

using ::testing::AnyOf;
using ::testing::MatchesRegex;

namespace {

std::string printed(const std::string& message) {
    return errorOutputOf([&] { printDiagnostic("%s", message.c_str()); });
}

} // namespace

TEST(DiagnosticsTest, IsALineWithTheDaemonsName) {
    EXPECT_EQ(printed("Stopping NetListener"), "Prod.testserver: Stopping NetListener\n");
    EXPECT_EQ(printed(""), "Prod.testserver: \n");
    EXPECT_EQ(printed("100% %s %n"), "Prod.testserver: 100% %s %n\n");
}

TEST(DiagnosticsTest, IsAsLongAsItsTextIs) {
    constexpr std::size_t kRoom = 1000;
    for (const std::size_t size : {kRoom - 19, kRoom - 18, kRoom - 17, kRoom, std::size_t{100'000}}) {
        const std::string text(size, 'x');
        EXPECT_EQ(printed(text), "Prod.testserver: " + text + "\n") << size;
    }
}

TEST(DiagnosticsTest, MayComeWithoutNameAndLineEnd) {
    EXPECT_EQ(errorOutputOf([] { printError("%d bytes\n", 7); }), "7 bytes\n");
}

TEST(DiagnosticsTest, LinesOfSeveralThreadsDoNotMix) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    ::testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int index = 0; index < kThreads; ++index)
        threads.emplace_back([] {
            for (int line = 0; line < kLines; ++line)
                printDiagnostic("one line");
        });
    for (std::thread& thread : threads)
        thread.join();
    // Without a thread of the stream's own some may be lost, which is told, but none in part.
    const std::string text = ::testing::internal::GetCapturedStderr();
    EXPECT_FALSE(text.empty());
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(line,
                    AnyOf("Prod.testserver: one line",
                          MatchesRegex("Prod.testserver: [0-9]+ bytes for standard error were lost")));
}
