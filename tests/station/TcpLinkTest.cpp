#include "client/TcpLink.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <vector>

#include "FailureKind.h"
#include "FakeUnit.h"
#include "Interruptions.h"
#include "client/Client.h"

namespace station {
namespace {

// More than the buffers of both ends of a connection hold.
constexpr std::size_t kMoreThanBuffered = std::size_t{32} * 1024 * 1024;

Deadline patient() {
    return Deadline::after(Seconds(30));
}
Deadline soon() {
    return Deadline::after(Seconds(0.2));
}

std::string receiveAll(TcpLink& link) {
    std::string all;
    for (;;) {
        const std::string bytes = link.receive(patient());
        if (bytes.empty())
            return all;
        all += bytes;
    }
}

Answer execute(const TcpTarget& target, const std::string& name, const Deadline& deadline) {
    TcpLink link = TcpLink::connect(target, deadline);
    return Client(link).execute(Request(name, {}), deadline, [](const std::string&) {});
}

TEST(TcpLink, CarriesACommandAndItsAnswer) {
    FakeUnit unit(sent("\x02status\x03\n") + arrives(answer("status ok")));
    EXPECT_EQ(execute(unit.target(), "status", patient()).text, "ok");
}

TEST(TcpLink, TakesAnAnswerThatComesByteByByte) {
    FakeUnit unit(sent(request("status")) +
                  arrivesByteByByte(answer("Info \"a\nb\"") + answer("status ok")));
    EXPECT_EQ(execute(unit.target(), "status", patient()).text, "ok");
}

TEST(TcpLink, FindsAHostByName) {
    FakeUnit unit(arrives("x"));
    TcpLink link = TcpLink::connect(TcpTarget{"localhost", unit.target().port}, patient());
    EXPECT_EQ(receiveAll(link), "x");
}

TEST(TcpLink, ReachesAnIpv6Address) try {
    FakeUnit unit(arrives("x"), "::1");
    TcpLink link = TcpLink::connect(unit.target(), patient());
    EXPECT_EQ(receiveAll(link), "x");
} catch (const std::system_error&) {
    GTEST_SKIP() << "this machine has no IPv6";
}

TEST(TcpLink, SendsMoreThanTheSystemTakesAtOnce) {
    const std::string bytes = std::string(kMoreThanBuffered, 'a') + "\x03\n";
    std::string request;
    {
        FakeUnit unit([&](UnitConnection& connection) { request = connection.readRequest(); });
        TcpLink link = TcpLink::connect(unit.target(), patient());
        link.send(bytes, patient());
        EXPECT_EQ(receiveAll(link), "");
    }
    EXPECT_TRUE(request == bytes) << request.size() << " bytes arrived";
}

TEST(TcpLink, FailsWhenNobodyListens) {
    const BoundSocket silent;
    EXPECT_THAT(failureOf([&] { TcpLink::connect(silent.target(), patient()); }),
                FailsWith(Failure::Kind::CannotConnect,
                          "cannot connect to " + silent.target().text() + ": Connection refused"));
}

TEST(TcpLink, FailsWhenTheHostHasNoAddress) {
    EXPECT_THAT(
        failureOf([] {
            TcpLink::connect(TcpTarget{"no.such.host.invalid", 1}, patient());
        }),
        FailsWith(Failure::Kind::CannotConnect, "cannot connect to tcp:no.such.host.invalid:1: "));
}

TEST(TcpLink, TimesOutWhenTheConnectionIsNotTaken) {
    const BoundSocket busy;
    busy.listen(0);
    // Once the queue of the listener is full, further attempts are left without a reply.
    const TcpLink first = TcpLink::connect(busy.target(), patient());
    EXPECT_THAT(failureOf([&] {
                    std::vector<TcpLink> others;
                    others.reserve(10);
                    for (int i = 0; i < 10; ++i)
                        others.push_back(TcpLink::connect(busy.target(), soon()));
                }),
                FailsWith(Failure::Kind::TimedOut, "time-out while connecting to tcp:127.0.0.1:"));
}

TEST(TcpLink, TimesOutWhenTheUnitDoesNotAnswer) {
    FakeUnit unit(kSilence);
    EXPECT_THAT(failureOf([&] { execute(unit.target(), "status", soon()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST(TcpLink, TimesOutWhenTheUnitNeverComesToItsFinalLine) {
    FakeUnit unit([](UnitConnection& connection) {
        connection.readRequest();
        while (connection.sendText("Info \"still busy\"")) {
        }
    });
    EXPECT_THAT(failureOf([&] { execute(unit.target(), "status", soon()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while waiting for the answer"));
}

TEST(TcpLink, TimesOutWhenTheUnitDoesNotRead) {
    const BoundSocket deaf;
    deaf.listen();
    TcpLink link = TcpLink::connect(deaf.target(), patient());
    EXPECT_THAT(failureOf([&] { link.send(std::string(kMoreThanBuffered, 'a'), soon()); }),
                FailsWith(Failure::Kind::TimedOut, "time-out while sending the command"));
}

TEST(TcpLink, TellsTheEndOfTheConnection) {
    FakeUnit unit(arrives("half"));
    TcpLink link = TcpLink::connect(unit.target(), patient());
    EXPECT_EQ(receiveAll(link), "half");
}

TEST(TcpLink, TakesAResetAsTheEndAndRaisesNoSignal) {
    FakeUnit unit([](UnitConnection& connection) {
        connection.readRequest();
        connection.resetAtEnd();
    });
    TcpLink link = TcpLink::connect(unit.target(), patient());
    link.send("\x02status\x03\n", patient());
    EXPECT_EQ(link.receive(patient()), "");
    EXPECT_THAT(failureOf([&] { link.send("status", patient()); }),
                FailsWith(Failure::Kind::ConnectionLost, "Broken pipe"));
}

TEST(TcpLink, SurvivesInterruptedSystemCalls) {
    const Interruptions interruptions;
    FakeUnit unit([&](UnitConnection& connection) {
        connection.readRequest();
        interruptions.waitFor(5);
        connection.sendText("status ok");
    });
    EXPECT_EQ(execute(unit.target(), "status", patient()).text, "ok");
}

} // namespace
} // namespace station
