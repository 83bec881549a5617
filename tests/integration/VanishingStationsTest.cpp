#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"
#include "support/Witness.h"

namespace {

enum class Farewell { Close, Reset, HalfCloseThenReset };

constexpr Farewell kFarewells[] = {Farewell::Close, Farewell::Reset, Farewell::HalfCloseThenReset};

void leave(Connection& station, Farewell farewell) {
    if (farewell == Farewell::Close) {
        station.close();
        return;
    }
    if (farewell == Farewell::HalfCloseThenReset)
        station.shutdownSending();
    station.vanish();
}

class VanishingStationsTest : public DaemonTest {
protected:
    void expectNothingLeft() {
        EXPECT_TRUE(eventually([this] { return openDescriptors(daemon.pid()) == m_descriptors; }));
        EXPECT_TRUE(eventually([this] { return threadCount(daemon.pid()) == m_threads; }));
    }

private:
    std::vector<int> m_descriptors = openDescriptors(daemon.pid());
    std::size_t m_threads = settledThreadCount(daemon.pid());
};

TEST_F(VanishingStationsTest, AtEveryPointOfARequest) {
    const std::string requests[] = {request("status 02"), request("unknownName"), request("ack")};
    {
        const Witness witness;
        for (const Farewell farewell : kFarewells) {
            for (const std::string& whole : requests) {
                for (std::size_t length = 0; length <= whole.size(); ++length) {
                    for (const bool waits : {false, true}) {
                        Connection station;
                        station.send(whole.substr(0, length));
                        if (waits)
                            station.waitUntilTaken();
                        leave(station, farewell);
                    }
                }
            }
        }
        EXPECT_TRUE(witness.seesMore(10));
    }
    expectNothingLeft();
}

TEST_F(VanishingStationsTest, AtEveryPointOfAnAnswer) {
    const std::string received = unknown("unknownName");
    {
        const Witness witness;
        for (const Farewell farewell : kFarewells) {
            for (std::size_t length = 0; length <= received.size(); ++length) {
                Connection station;
                station.send(request("unknownName"));
                EXPECT_EQ(station.receive(length), received.substr(0, length));
                leave(station, farewell);
            }
        }
        EXPECT_TRUE(witness.seesMore(10));
    }
    expectNothingLeft();
}

TEST_F(VanishingStationsTest, InTheMiddleOfALongAnswer) {
    writeFile(kImageVersionFile, std::string(4 << 20, 'x'));
    {
        const Witness witness;
        for (const Farewell farewell : kFarewells) {
            for (const std::size_t length : {0U, 1U, 1000U, 1000000U}) {
                Connection station;
                station.send(request("status 01"));
                EXPECT_EQ(station.receive(length).size(), length);
                leave(station, farewell);
            }
        }
        EXPECT_TRUE(witness.seesMore(10));
    }
    expectNothingLeft();
}

TEST_F(VanishingStationsTest, DuringItsRunningCommand) {
    {
        const Witness witness;
        for (const Farewell farewell : kFarewells) {
            Connection station;
            station.send(request(
                "exec command 60 \"touch /tmp/running; while [ ! -e /tmp/go ]; do sleep 0.01; done; "
                "head -c 100000 /dev/zero; echo finished >>/tmp/finished\""));
            ASSERT_TRUE(eventually([] { return exists("/tmp/running"); }));
            leave(station, farewell);
            writeFile("/tmp/go", "");
            EXPECT_TRUE(witness.seesMore(10));
            removeFile("/tmp/running");
            removeFile("/tmp/go");
        }
        EXPECT_EQ(contentOf("/tmp/finished"), "finished\nfinished\nfinished\n");
    }
    expectNothingLeft();
}

TEST_F(VanishingStationsTest, WhileWaitingBehindAnothersCommand) {
    Connection busy;
    busy.send(
        request("exec command 60 \"touch /tmp/running; while [ ! -e /tmp/go ]; do sleep 0.01; done\""));
    ASSERT_TRUE(eventually([] { return exists("/tmp/running"); }));
    for (const Farewell farewell : kFarewells) {
        for (int number = 0; number < 10; ++number) {
            Connection station;
            station.send(request("unknownName"));
            station.waitUntilTaken();
            leave(station, farewell);
        }
    }
    Connection patient;
    patient.send(request("patient"));
    patient.waitUntilTaken();
    writeFile("/tmp/go", "");
    expectExchange(busy, "", answer("exec base64()"));
    expectExchange(patient, "", unknown("patient"));
    busy.close();
    patient.close();
    expectNothingLeft();
}

TEST_F(VanishingStationsTest, BeforeTheyAreAccepted) {
    {
        const Witness witness;
        for (int round = 0; round < 90; ++round) {
            Connection station;
            leave(station, kFarewells[round % 3]);
        }
        EXPECT_TRUE(witness.seesMore(10));
    }
    expectNothingLeft();
}

} // namespace
