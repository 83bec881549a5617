#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <thread>

#include "support/Peers.h"
#include "support/TestBytes.h"
#include "support/Waiting.h"

namespace headunit_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kLoopback[] = "/dev/ser1";
constexpr char kModem[] = "/dev/NAD/AT_port";
constexpr char kReceiver[] = "/dev/ser3";
constexpr char kOk[] = "\r\nOK\r\n";

class LineDevicesTest : public PeersTest {};

TEST_F(LineDevicesTest, LoopbackGivesBackEveryByte) {
    const Line line(node(kLoopback));
    const std::string bytes = everyByte();
    ASSERT_TRUE(line.trySend(bytes));
    EXPECT_EQ(line.receive(256), bytes);
}

TEST_F(LineDevicesTest, LoopbackWithThePlugOutGivesNothingBack) {
    const Line line(node(kLoopback));
    tell("loopback off");
    ASSERT_TRUE(line.trySend("lost"));
    ASSERT_TRUE(eventually([&] {
        return ask("state").text.find("loopback /dev/ser1 plugged from-unit 4 to-unit 0") !=
               std::string::npos;
    }));
    tell("loopback on");
    ASSERT_TRUE(line.trySend("kept"));
    EXPECT_EQ(line.receive(4), "kept");
}

TEST_F(LineDevicesTest, ModemEchoesAndAnswers) {
    const Line line(node(kModem));
    ASSERT_TRUE(line.trySend("AT+CGMM\r"));
    EXPECT_EQ(line.receiveTo(kOk), "AT+CGMM\r\r\nNAD-1\r\n\r\nOK\r\n");
    ASSERT_TRUE(line.trySend("ATE0\r"));
    EXPECT_EQ(line.receiveTo(kOk), "ATE0\r\r\nOK\r\n");
    ASSERT_TRUE(line.trySend("AT+NO\r"));
    EXPECT_EQ(line.receiveTo("ERROR\r\n"), "\r\nERROR\r\n");
}

TEST_F(LineDevicesTest, ModemAnswersManyLinesAtOnceInTheirOrder) {
    const Line line(node(kModem));
    ASSERT_TRUE(line.trySend("ATE0\r"));
    EXPECT_EQ(line.receiveTo(kOk), "ATE0\r\r\nOK\r\n");
    std::string sent, expected;
    for (int round = 0; round < 2000; ++round) {
        sent += round % 2 == 0 ? "AT+CGMM\r" : "AT+CSQ\r";
        expected += round % 2 == 0 ? "\r\nNAD-1\r\n\r\nOK\r\n" : "\r\n+CSQ: 20,99\r\n\r\nOK\r\n";
    }
    bool written = false;
    std::thread writer([&] { written = line.trySend(sent); });
    EXPECT_TRUE(line.receive(expected.size()) == expected);
    writer.join();
    EXPECT_TRUE(written);
}

TEST_F(LineDevicesTest, ModemAnswersWhatItWasToldTo) {
    const Line line(node(kModem));
    tell("modem signal 7");
    tell("modem registration 5");
    tell("modem pin wanted");
    ASSERT_TRUE(line.trySend("AT+CSQ;+CREG?;+CPIN?\r"));
    EXPECT_THAT(line.receiveTo(kOk),
                HasSubstr("\r\n+CSQ: 7,99\r\n\r\n+CREG: 0,5\r\n\r\n+CPIN: SIM PIN\r\n"));
    ASSERT_TRUE(line.trySend("AT+CREG=1\r"));
    line.receiveTo(kOk);
    tell("modem registration 2");
    EXPECT_EQ(line.receive(12), "\r\n+CREG: 2\r\n");
}

TEST_F(LineDevicesTest, ModemAnswersLateButEchoesAtOnce) {
    const Line line(node(kModem));
    tell("modem late 400");
    const auto start = steady_clock::now();
    ASSERT_TRUE(line.trySend("AT\rAT\r"));
    EXPECT_EQ(line.receive(6), "AT\rAT\r");
    EXPECT_EQ(line.receive(12), "\r\nOK\r\n\r\nOK\r\n");
    EXPECT_GE(steady_clock::now() - start, milliseconds(400));
}

TEST_F(LineDevicesTest, SilentModemSaysNothing) {
    const Line line(node(kModem));
    tell("modem late 600000");
    ASSERT_TRUE(line.trySend("AT\r"));
    EXPECT_EQ(line.receive(3), "AT\r");
    tell("modem silent on"); // forgets the late answer, too
    ASSERT_TRUE(line.trySend("AT+CSQ\r"));
    ASSERT_TRUE(eventually(
        [&] { return ask("state").text.find("AT_port plugged from-unit 10 ") != std::string::npos; }));
    tell("modem silent off");
    tell("modem late 0");
    ASSERT_TRUE(line.trySend("ATE0\r"));
    EXPECT_EQ(line.receiveTo(kOk), "ATE0\r\r\nOK\r\n");
}

TEST_F(LineDevicesTest, ModemForgetsAHalfLineWhenItIsUnplugged) {
    auto line = std::make_unique<Line>(node(kModem));
    ASSERT_TRUE(line->trySend("AT+CG"));
    EXPECT_EQ(line->receive(5), "AT+CG");
    tell("unplug modem");
    EXPECT_TRUE(line->seesHangUp());
    tell("plug modem");
    line = std::make_unique<Line>(node(kModem));
    ASSERT_TRUE(line->trySend("AT\r"));
    EXPECT_EQ(line->receiveTo(kOk), "AT\r\r\nOK\r\n");
}

TEST_F(LineDevicesTest, ReceiverSaysWhereItIsOnceASecond) {
    tell("position -12.5 8");
    const Line line(node(kReceiver));
    std::string sentence;
    for (int count = 0; count < 2; ++count) {
        sentence = line.receiveTo("\r\n");
        EXPECT_THAT(sentence, StartsWith("$GPGGA,"));
        EXPECT_THAT(sentence, HasSubstr(",1230.0000,S,00800.0000,E,"));
        sentence = line.receiveTo("\r\n");
        EXPECT_THAT(sentence, StartsWith("$GPRMC,"));
        EXPECT_THAT(sentence, HasSubstr(",A,1230.0000,S,00800.0000,E,"));
    }
}

TEST_F(LineDevicesTest, ReceiverThatIsOffSaysNothing) {
    tell("receiver off");
    tell("unplug receiver"); // takes along what it has said already
    tell("plug receiver");
    const Line line(node(kReceiver));
    // Its silence shows against another line's answer that comes later than two sentences would.
    tell("modem late 2000");
    const Line modem(node(kModem));
    ASSERT_TRUE(modem.trySend("AT\r"));
    EXPECT_EQ(modem.receiveTo(kOk), "AT\r\r\nOK\r\n");
    EXPECT_EQ(line.readNow(), "");
    tell("receiver on");
    EXPECT_THAT(line.receiveTo("\r\n"), StartsWith("$GPGGA,"));
}

TEST_F(LineDevicesTest, ReceiverDropsWholeSentencesThatNobodyReads) {
    // By then it has said more than it keeps for a late reader.
    tell("modem late 5500");
    const Line modem(node(kModem));
    ASSERT_TRUE(modem.trySend("AT\r"));
    modem.receiveTo(kOk);
    const Line line(node(kReceiver));
    const std::string kept = line.readNow();
    EXPECT_LE(kept.size(), 512u);
    EXPECT_THAT(kept, StartsWith("$GPGGA,"));
    EXPECT_EQ(kept.substr(kept.size() - 2), "\r\n");
    EXPECT_THAT(line.receiveTo("\r\n"), StartsWith("$GPGGA,")) << "it goes on";
}

TEST_F(LineDevicesTest, EveryLineIsPluggedInAgainAtItsNode) {
    for (const auto& [line, path] : {std::pair{"loopback", kLoopback}, std::pair{"modem", kModem},
                                     std::pair{"receiver", kReceiver}}) {
        const Line holder(node(path));
        tell(std::string("unplug ") + line);
        EXPECT_FALSE(exists(path));
        EXPECT_TRUE(holder.seesHangUp()) << line;
        tell(std::string("plug ") + line);
        EXPECT_TRUE(std::filesystem::is_character_file(node(path))) << line;
    }
    const Line loopback(node(kLoopback));
    ASSERT_TRUE(loopback.trySend("again"));
    EXPECT_EQ(loopback.receive(5), "again");
    EXPECT_THAT(Line(node(kReceiver)).receiveTo("\r\n"), StartsWith("$GPGGA,"));
}

} // namespace
} // namespace headunit_test
