#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

// More than the unit's system keeps of what a station with a small buffer does not read.
constexpr std::size_t kMoreThanBuffered = std::size_t{16} << 20;
constexpr long kSomeAnswers = 100;

class DeafStationTest : public DaemonTest {};

TEST_F(DeafStationTest, HoldsUpNobodyWithALongAnswer) {
    const std::string content(kMoreThanBuffered, 'x');
    writeFile(kImageVersionFile, content);
    Connection deaf = Connection::withSmallBuffer();
    deaf.send(request("status 01"));
    ASSERT_TRUE(deaf.hasInputWithin(kPatience));
    {
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    expectExchange(deaf, "", answer("status base64(" + base64(content) + ")"));
    expectNothingMore(deaf);
}

TEST_F(DeafStationTest, HoldsUpNobodyWithALongMessage) {
    const std::string name(kMoreThanBuffered, 'n');
    Connection deaf = Connection::withSmallBuffer();
    deaf.send(request(name));
    ASSERT_TRUE(deaf.hasInputWithin(kPatience));
    {
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    expectExchange(deaf, "", unknown(name));
    expectNothingMore(deaf);
}

TEST_F(DeafStationTest, HoldsUpNobodyWithAKilledCommandsOutput) {
    const std::string text = "head -c " + std::to_string(kMoreThanBuffered) +
                             " /dev/zero | tr '\\000' y; touch /tmp/written; sleep 1000";
    Connection deaf = Connection::withSmallBuffer();
    deaf.send(request("exec command 5 \"" + text + "\""));
    ASSERT_TRUE(deaf.hasInputWithin(kPatience));
    {
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    ASSERT_TRUE(exists("/tmp/written")) << "five seconds did not suffice to write the output";
    expectExchange(deaf, "",
                   failure("exec", "Process " + text + " was killed after timeout\nstdout+err:\n" +
                                       std::string(kMoreThanBuffered, 'y') + "\n"));
    expectNothingMore(deaf);
}

TEST_F(DeafStationTest, ManyOfThemHoldUpNobody) {
    const std::string content(kMoreThanBuffered, 'x');
    writeFile(kImageVersionFile, content);
    std::vector<Connection> deaf;
    for (int number = 0; number < 10; ++number) {
        deaf.push_back(Connection::withSmallBuffer());
        deaf.back().send(request("status 01"));
        ASSERT_TRUE(deaf.back().hasInputWithin(kPatience));
    }
    {
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
    }
    const std::string received = answer("status base64(" + base64(content) + ")");
    for (Connection& station : deaf)
        expectExchange(station, "", received);
}

TEST_F(DeafStationTest, GetsTheFirstOfTheRequestsThatPiledUp) {
    const std::string content(kMoreThanBuffered, 'x');
    writeFile(kImageVersionFile, content);
    Connection deaf = Connection::withSmallBuffer();
    deaf.send(request("status 01"));
    ASSERT_TRUE(deaf.hasInputWithin(kPatience));
    // Read as one once the long answer has gone: what follows a command in one read is dropped.
    for (int number = 0; number < 50; ++number)
        deaf.send(request("piled" + std::to_string(number)));
    expectExchange(deaf, "", answer("status base64(" + base64(content) + ")") + unknown("piled0"));
    expectNothingMore(deaf);
}

TEST_F(DeafStationTest, MayLeaveWithoutHavingRead) {
    writeFile(kImageVersionFile, std::string(kMoreThanBuffered, 'x'));
    const auto descriptors = openDescriptors(daemon.pid());
    {
        Connection deaf = Connection::withSmallBuffer();
        deaf.send(request("status 01"));
        ASSERT_TRUE(deaf.hasInputWithin(kPatience));
        const Witness witness;
        EXPECT_TRUE(witness.seesMore(kSomeAnswers));
        deaf.vanish();
    }
    EXPECT_TRUE(eventually([&] { return openDescriptors(daemon.pid()) == descriptors; }));
}

} // namespace
