#include "client/SerialLink.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "FailureKind.h"
#include "FakeLine.h"
#include "Interruptions.h"
#include "client/BinaryClient.h"
#include "support/TestBytes.h"

namespace station {
namespace {

// More than a line keeps for a unit that does not read.
constexpr std::size_t kMoreThanBuffered = std::size_t{1024} * 1024;

Deadline patient() {
    return Deadline::after(Seconds(60));
}
Deadline soon() {
    return Deadline::after(Seconds(0.2));
}

std::string receive(SerialLink& link, std::size_t count) {
    std::string bytes;
    while (bytes.size() < count) {
        const std::string more = link.receive(patient());
        if (more.empty())
            return bytes;
        bytes += more;
    }
    return bytes;
}

termios attributesOf(const FakeLine& line) {
    termios attributes = {};
    EXPECT_EQ(::tcgetattr(line.terminal(), &attributes), 0);
    return attributes;
}

TEST(SerialLink, CarriesEveryByteBothWays) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    line.send(everyByte());
    EXPECT_EQ(receive(link, 256), everyByte());
    link.send(everyByte(), patient());
    EXPECT_EQ(line.receive(256), everyByte());
}

TEST(SerialLink, TakesBytesThatComeOneByOne) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    const LineScript unit([&] { line.sendByteByByte(everyByte()); });
    EXPECT_EQ(receive(link, 256), everyByte());
}

TEST(SerialLink, KeepsWhatArrivedBeforeItWasOpened) {
    const FakeLine line;
    line.send(everyByte());
    SerialLink link = SerialLink::open(line.target());
    EXPECT_EQ(receive(link, 256), everyByte());
}

TEST(SerialLink, SetsTheLineAndGivesItsAttributesBack) {
    const FakeLine line;
    termios before = attributesOf(line);
    before.c_lflag |= ICANON | ECHO;
    before.c_iflag |= ICRNL | IXON;
    before.c_oflag |= OPOST | ONLCR;
    ::cfsetispeed(&before, B9600);
    ::cfsetospeed(&before, B9600);
    ASSERT_EQ(::tcsetattr(line.terminal(), TCSANOW, &before), 0);
    before = attributesOf(line);
    {
        const SerialLink link = SerialLink::open(line.target());
        const termios during = attributesOf(line);
        EXPECT_EQ(::cfgetispeed(&during), static_cast<speed_t>(B115200));
        EXPECT_EQ(::cfgetospeed(&during), static_cast<speed_t>(B115200));
        EXPECT_EQ(during.c_cflag & (CSIZE | CSTOPB | PARENB | CLOCAL | CREAD), CS8 | CLOCAL | CREAD);
        EXPECT_EQ(during.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0U);
        EXPECT_EQ(during.c_iflag & (ICRNL | INLCR | IGNCR | IXON | IXOFF | ISTRIP), 0U);
        EXPECT_EQ(during.c_oflag & OPOST, 0U);
    }
    const termios after = attributesOf(line);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
    EXPECT_EQ(after.c_cflag, before.c_cflag);
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(std::memcmp(after.c_cc, before.c_cc, sizeof after.c_cc), 0);
    EXPECT_EQ(::cfgetospeed(&after), ::cfgetospeed(&before));
}

TEST(SerialLink, ReceivesNothingByTheMomentWhenNothingArrives) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    EXPECT_EQ(link.receiveBy(Deadline::after(Seconds(0))), std::nullopt);
    EXPECT_EQ(link.receiveBy(Deadline::after(Seconds(0.01))), std::nullopt);
    EXPECT_THAT(failureOf([&] { link.receive(soon()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST(SerialLink, LetsOneStationAtATimeUseALine) {
    const FakeLine line;
    {
        SerialLink first = SerialLink::open(line.target());
        EXPECT_THAT(failureOf([&] { SerialLink::open(line.target()); }),
                    FailsWith(Failure::Kind::CannotConnect, "cannot connect to " + line.target().text() +
                                                                ": in use by another station"));
        first.send("x", patient());
        EXPECT_EQ(line.receive(1), "x") << "the first one goes on";
    }
    SerialLink next = SerialLink::open(line.target());
    next.send("y", patient());
    EXPECT_EQ(line.receive(1), "y");
}

TEST(SerialLink, KnowsALineByOtherNames) {
    const FakeLine line;
    const std::string name = testing::TempDir() + "station_line_" + std::to_string(::getpid());
    std::filesystem::create_symlink(line.target().path, name);
    {
        SerialLink first = SerialLink::open(SerialTarget{name});
        EXPECT_THAT(failureOf([&] { SerialLink::open(line.target()); }),
                    FailsWith(Failure::Kind::CannotConnect, "in use by another station"));
    }
    std::filesystem::remove(name);
}

TEST(SerialLink, RefusesWhatIsNoTerminal) {
    const std::string pipe = testing::TempDir() + "station_pipe_" + std::to_string(::getpid());
    ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    for (const std::string& path : {pipe, std::string("/dev/null")})
        EXPECT_THAT(failureOf([&] { SerialLink::open(SerialTarget{path}); }),
                    FailsWith(Failure::Kind::CannotConnect,
                              "cannot connect to serial:" + path + ": not a terminal"));
    std::filesystem::remove(pipe);
}

TEST(SerialLink, TellsWhyAPathCannotBeOpened) {
    EXPECT_THAT(failureOf([] { SerialLink::open(SerialTarget{"/no/such/line"}); }),
                FailsWith(Failure::Kind::CannotConnect,
                          "cannot connect to serial:/no/such/line: No such file or directory"));
    EXPECT_THAT(
        failureOf([] { SerialLink::open(SerialTarget{"/tmp"}); }),
        FailsWith(Failure::Kind::CannotConnect, "cannot connect to serial:/tmp: Is a directory"));
}

TEST(SerialLink, TimesOutWhenTheUnitDoesNotRead) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    EXPECT_THAT(failureOf([&] { link.send(std::string(kMoreThanBuffered, 'a'), soon()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while sending to the unit"));
}

TEST(SerialLink, SendsMoreThanTheLineTakesAtOnce) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    std::string received;
    {
        const LineScript unit([&] { received = line.receive(kMoreThanBuffered); });
        link.send(std::string(kMoreThanBuffered, 'a'), patient());
    }
    EXPECT_TRUE(received == std::string(kMoreThanBuffered, 'a')) << received.size() << " bytes arrived";
}

TEST(SerialLink, TellsThatTheLineHungUp) {
    FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    line.hangUp();
    EXPECT_EQ(link.receive(patient()), "");
    EXPECT_THAT(failureOf([&] { link.send("x", patient()); }),
                FailsWith(Failure::Kind::ConnectionLost, "the connection was lost while sending"));
}

TEST(SerialLink, TellsAHangUpThatComesWhileItWaits) {
    FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    const LineScript unit([&] {
        EXPECT_EQ(line.receive(1), "x");
        line.hangUp();
    });
    link.send("x", patient());
    EXPECT_EQ(link.receive(patient()), "");
}

TEST(SerialLink, SurvivesInterruptedSystemCalls) {
    const Interruptions interruptions;
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    const LineScript unit([&] {
        interruptions.waitFor(5);
        line.send("x");
    });
    EXPECT_EQ(link.receive(patient()), "x");
}

TEST(SerialLink, CarriesCommandsAndTheirAcknowledgements) {
    const FakeLine line;
    SerialLink link = SerialLink::open(line.target());
    BinaryClient client(link, {[](const std::string&) {}});
    {
        const LineScript unit([&] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_EQ(line.receive(2), "\x02s");
                line.sendByteByByte(debugFrame("text") + statusFrame());
                EXPECT_EQ(line.receive(2), kAcknowledgement);
            }
        });
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(client.execute(BinaryRequest::encode("status", {}), patient()).text, kStatusText);
    }
    EXPECT_EQ(line.receiveRest(), "");
}

} // namespace
} // namespace station
