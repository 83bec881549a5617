#include "core/Diagnostics.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

std::string printed(const std::string& message) {
    ::testing::internal::CaptureStderr();
    printDiagnostic(message);
    return ::testing::internal::GetCapturedStderr();
}

} // namespace

TEST(DiagnosticsTest, IsALineWithTheDaemonsName) {
    EXPECT_EQ(printed("Stopping NetListener"), "Prod.testserver: Stopping NetListener\n");
    EXPECT_EQ(printed(""), "Prod.testserver: \n");
    EXPECT_EQ(printed("100% %s %n"), "Prod.testserver: 100% %s %n\n");
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
    std::string expected;
    for (int line = 0; line < kThreads * kLines; ++line)
        expected += "Prod.testserver: one line\n";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), expected);
}
