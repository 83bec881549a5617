#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <memory>
#include <string>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

class MemoryTest : public testing::Test {
protected:
    void SetUp() override {
        if (kSanitized)
            GTEST_SKIP() << "a sanitizer needs the address space";
        DaemonStart start;
        start.limits = {{RLIMIT_AS, 400 * kMiB}};
        daemon = std::make_unique<Daemon>(start);
    }

    void TearDown() override {
        if (daemon)
            expectHealthy(*daemon);
    }

    /// A request that is too much ends its connection without an answer, and disturbs nobody.
    void expectConnectionEnds(const std::string& begin, const std::string& block, std::size_t blocks) {
        Connection greedy;
        {
            const Witness witness;
            bool open = greedy.trySend(begin);
            for (std::size_t at = 0; open && at < blocks; ++at)
                open = greedy.trySend(block);
            if (open)
                greedy.trySend("\x03\n");
            EXPECT_EQ(greedy.receiveUntilClosed(), "");
            EXPECT_TRUE(witness.seesMore(10));
        }
        Connection next;
        expectExchange(next, request("exec command 5 \"echo next\""),
                       answer("exec base64(" + base64("next\n") + ")"));
    }

    std::unique_ptr<Daemon> daemon;
};

TEST_F(MemoryTest, ALongName) {
    expectConnectionEnds("\x02", std::string(kMiB, 'n'), 380);
}

TEST_F(MemoryTest, LongNoise) {
    expectConnectionEnds("", std::string(kMiB, ' '), 380);
}

TEST_F(MemoryTest, ALongStringArgument) {
    expectConnectionEnds("\x02one \"", std::string(kMiB, 's'), 380);
}

TEST_F(MemoryTest, MillionsOfTinyArguments) {
    std::string block;
    while (block.size() < kMiB)
        block += "a ";
    expectConnectionEnds("\x02one ", block, 16);
}

TEST_F(MemoryTest, MillionsOfEmptyArguments) {
    std::string block;
    while (block.size() < kMiB)
        block += " -";
    expectConnectionEnds("\x02one hex(", block, 16);
}

TEST_F(MemoryTest, LeavesNoHalfCommandBehind) {
    std::string line = "\x02one ";
    while (line.size() < 16 * kMiB)
        line += "a ";
    Connection greedy;
    greedy.trySend(line + "\x03\n");
    EXPECT_EQ(greedy.receiveUntilClosed(), "");
    // A line without a name repeats the last command, and there is none.
    Connection next;
    expectExchange(next, "\x03\n", "\x02#\x03\n");
    EXPECT_TRUE(daemon->waitForOutput("command fehler\n")) << daemon->output();
}

TEST_F(MemoryTest, OutputThatDoesNotFitIsAnError) {
    Connection station;
    expectExchange(station, request("exec command 60 \"head -c 250000000 /dev/zero\""),
                   failure("exec", "cannot read /tmp/resp.txt: Cannot allocate memory"));
    expectExchange(station, request("exec command 5 \"echo next\""),
                   answer("exec base64(" + base64("next\n") + ")"));
}

TEST_F(MemoryTest, AFileThatDoesNotFitIsAnError) {
    writeFile(kImageVersionFile, std::string(250 * kMiB, 'x'));
    Connection station;
    expectExchange(station, request("status 01"),
                   failure("status", "cannot read /mnt/app/img_ver.txt: Cannot allocate memory"));
}

TEST_F(MemoryTest, TheMemoryOfALongLineIsGivenBack) {
    const std::string many(60 * kMiB, 'a');
    const std::string noise(60 * kMiB, ' ');
    Connection station;
    expectExchange(station, request("one"), unknown("one"));
    const std::size_t before = residentBytes(daemon->pid());
    for (const std::string& line :
         {noise + request("one"), "\x02" + noise + "one\x03\n", noise + request("one"),
          request("one hex(" + many + ")"), request("one \"" + many + "\"")}) {
        SCOPED_TRACE(line.substr(0, 8));
        expectExchange(station, line, unknown("one"));
        // Its tokens are kept for a line without a name.
        expectExchange(station, request("one"), unknown("one"));
        // What was not wanted goes to standard output, a moment later.
        EXPECT_TRUE(eventually([&] { return residentBytes(daemon->pid()) < before + 2 * kMiB; },
                               std::chrono::seconds(10)))
            << residentBytes(daemon->pid()) - before;
    }
}

} // namespace
