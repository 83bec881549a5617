#include "transfer/Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace station {
namespace {

using std::chrono::milliseconds;

class ProgressTest : public testing::Test {
protected:
    std::unique_ptr<Progress> make(ProgressMode mode, std::size_t width = 79) {
        return makeProgress(mode, m_out, width, [this] { return m_now; });
    }

    void pass(milliseconds time) { m_now += time; }

    /// What was written since the last call.
    std::string shown() {
        const std::string text = m_out.str();
        m_out.str({});
        return text;
    }

private:
    std::ostringstream m_out;
    std::chrono::steady_clock::time_point m_now{std::chrono::hours(1)};
};

TEST_F(ProgressTest, PlainSaysALineForEachTenth) {
    const auto progress = make(ProgressMode::Plain);
    progress->begin(10000);
    for (std::uint64_t done = 0; done < 1000; done += 100)
        progress->at(done);
    EXPECT_EQ(shown(), "");
    pass(milliseconds(2000));
    progress->at(1000);
    EXPECT_EQ(shown(), "station: 10 %, 1000 B of 9.8 KiB, 500 B/s, 0:18 left\n");
    progress->at(1999);
    EXPECT_EQ(shown(), "");
    pass(milliseconds(2000));
    progress->at(4500);
    EXPECT_EQ(shown(), "station: 40 %, 4.4 KiB of 9.8 KiB, 1.1 KiB/s, 0:04 left\n");
    progress->at(3000); // a slice is moved again
    progress->at(4500);
    EXPECT_EQ(shown(), "");
    pass(milliseconds(6000));
    progress->at(10000);
    EXPECT_EQ(shown(), "station: 100 %, 9.8 KiB of 9.8 KiB, 1000 B/s, 0:10 taken\n");
}

TEST_F(ProgressTest, BarIsDrawnOnOneLine) {
    auto progress = make(ProgressMode::Bar);
    progress->begin(std::uint64_t{4} << 20);
    EXPECT_EQ(shown(), "\r  0 % [....................] 0 B of 4.0 MiB");
    pass(milliseconds(1000));
    progress->at(std::uint64_t{1} << 20);
    EXPECT_EQ(shown(), "\r 25 % [#####...............] 1.0 MiB of 4.0 MiB, 1.0 MiB/s, 0:03 left");
    pass(milliseconds(99));
    progress->at((std::uint64_t{1} << 20) + 244);
    EXPECT_EQ(shown(), "");
    progress->at(std::uint64_t{4} << 20);
    EXPECT_EQ(shown(), "\r100 % [####################] 4.0 MiB of 4.0 MiB, 3.6 MiB/s, 0:01 taken");
    progress.reset();
    EXPECT_EQ(shown(), "\n");
}

TEST_F(ProgressTest, BarMakesRoomForOtherText) {
    const auto progress = make(ProgressMode::Bar);
    progress->pause();
    EXPECT_EQ(shown(), "");
    progress->begin(100);
    const std::string line = shown().substr(1);
    progress->pause();
    EXPECT_EQ(shown(), '\r' + std::string(line.size(), ' ') + '\r');
    progress->at(0);
    EXPECT_EQ(shown(), '\r' + line);
}

TEST_F(ProgressTest, FitsANarrowTerminalAndCoversALongerLine) {
    const auto progress = make(ProgressMode::Bar, 30);
    progress->begin(10240);
    pass(milliseconds(1000));
    progress->at(5000);
    EXPECT_EQ(shown(), "\r  0 % 0 B of 10.0 KiB\r 48 % 4.9 KiB of 10.0 KiB, 4.9");
    pass(milliseconds(1000));
    progress->at(0);
    EXPECT_EQ(shown(), "\r  0 % 0 B of 10.0 KiB         ");
}

TEST_F(ProgressTest, NoneShowsNothing) {
    const auto progress = make(ProgressMode::None);
    progress->begin(100);
    progress->at(100);
    progress->pause();
    EXPECT_EQ(shown(), "");
}

TEST(SizeText, ChoosesTheUnit) {
    EXPECT_EQ(sizeText(0), "0 B");
    EXPECT_EQ(sizeText(1023), "1023 B");
    EXPECT_EQ(sizeText(1024), "1.0 KiB");
    EXPECT_EQ(sizeText(1024 * 1024 - 1), "1.0 MiB");
    EXPECT_EQ(sizeText(std::uint64_t{1} << 32), "4.0 GiB");
    EXPECT_EQ(sizeText(std::uint64_t{1} << 63), "8388608.0 TiB");
}

} // namespace
} // namespace station
