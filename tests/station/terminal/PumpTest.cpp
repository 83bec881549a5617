#include "terminal/Pump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "FailureKind.h"
#include "FakeChannelSession.h"
#include "ScriptedConsole.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "session/Refused.h"
#include "support/TestBytes.h"

namespace station {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr char kOpen[] = "open 1 115200 0";
constexpr char kFetch[] = "getall 1";
constexpr char kClose[] = "close 1";

const std::string kFull(Channel::kMostFetched, 'x');

class PumpTest : public testing::Test {
protected:
    void run() {
        Channel channel(session, order, [this](const std::string& info) { infos.push_back(info); });
        Pump(channel, console, interruption).run();
    }

    /// From the request with this number on nothing is answered any more.
    void cutAt(std::size_t request) {
        session.before = [request](const std::string&, std::size_t number) -> std::optional<Answer> {
            if (number >= request)
                throw Failure(Failure::Kind::ConnectionLost, "cut");
            return std::nullopt;
        };
    }

    void refuse(const std::string& refused) {
        session.before = [refused](const std::string& request, std::size_t) -> std::optional<Answer> {
            if (request == refused)
                return Answer{"Error 0xA000000", 0x0A000000};
            return std::nullopt;
        };
    }

    TerminalOrder order{1, 115200, 0};
    FakeChannelSession session;
    ScriptedConsole console;
    Interruption interruption;
    std::vector<std::string> infos;
};

TEST_F(PumpTest, OpensTheLinePassesBothWaysAndCloses) {
    console.typed = {"AT\r"};
    session.incoming = {"AT\r\r\nOK\r\n"};
    run();
    EXPECT_EQ(console.shown, "AT\r\r\nOK\r\n");
    EXPECT_THAT(session.requests(),
                ElementsAre(kOpen, "send 1 hex(41540D)", "getall 1 (9 times)", kClose));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, OpensTheLineAsItIsTold) {
    order.baud = 9600;
    order.flags = 0x0F;
    run();
    EXPECT_THAT(session.requests(), ElementsAre("open 1 9600 15", "getall 1 (8 times)", kClose));
}

TEST_F(PumpTest, PassesEveryByteBothWays) {
    console.typed = {everyByte()};
    session.before = [&](const std::string& request, std::size_t) -> std::optional<Answer> {
        // What is sent comes back.
        const std::string opening = "send 1 ";
        if (request.compare(0, opening.size(), opening) == 0)
            session.incoming.push_back(argumentBytes(request.substr(opening.size())));
        return std::nullopt;
    };
    run();
    EXPECT_EQ(console.shown, everyByte());
}

TEST_F(PumpTest, ShowsWhatStillComesAfterTheEndOfTheInput) {
    session.incoming = {"", "", "", "", "", "", "", "late", "", "", "", "", "", "", "", "", "too late"};
    run();
    EXPECT_EQ(console.shown, "late");
    EXPECT_EQ(session.count(kFetch), 16U);
}

TEST_F(PumpTest, SendsNoMoreAtOnceThanTheLineTakesMeanwhile) {
    order.baud = 9600;
    console.typed = {std::string(40, 'A')};
    run();
    const std::string sixteen = hexDigits(std::string(16, 'A'));
    EXPECT_THAT(session.requests(),
                ElementsAre("open 1 9600 0", "send 1 hex(" + sixteen + ")", kFetch,
                            "send 1 hex(" + sixteen + ")", kFetch, "send 1 hex(4141414141414141)",
                            "getall 1 (8 times)", kClose));
}

TEST_F(PumpTest, TakesWhatTheLineHasToSayBeforeItSendsMore) {
    console.typed = {"A", "B"};
    session.incoming = {kFull, kFull, "end"};
    run();
    EXPECT_EQ(console.shown, kFull + kFull + "end");
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, "send 1 hex(41)", "getall 1 (3 times)",
                                                "send 1 hex(42)", "getall 1 (8 times)", kClose));
}

TEST_F(PumpTest, IsHeardByALineThatNeverStopsTalking) {
    console.typed = {"A", "B"};
    session.incoming.assign(40, kFull);
    run();
    EXPECT_EQ(console.shown.size(), 40 * kFull.size());
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, "send 1 hex(41)", "getall 1 (32 times)",
                                                "send 1 hex(42)", "getall 1 (17 times)", kClose));
}

TEST_F(PumpTest, PausesWhileNothingComesAndNotOtherwise) {
    session.incoming = {"", "a", "b", ""};
    console.isPerson = true;
    console.typed = {"", "", "", "", "\x1D"};
    run();
    EXPECT_EQ(console.shown, "ab");
    const double pause = Pump::kPause.count();
    EXPECT_THAT(console.waits, ElementsAre(0, pause, 0, 0, pause));
}

TEST_F(PumpTest, EndsWithTheEscapeKey) {
    console.isPerson = true;
    console.typed = {"a",
                     "b\x1D"
                     "c",
                     "d"};
    run();
    EXPECT_THAT(session.requests(),
                ElementsAre(kOpen, "send 1 hex(61)", kFetch, "send 1 hex(62)", kClose));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, GoesOnForAPersonWhoSaysNothing) {
    console.isPerson = true;
    console.typed.assign(100, "");
    console.typed.emplace_back("\x1D");
    run();
    EXPECT_EQ(session.count(kFetch), 100U);
}

TEST_F(PumpTest, PassesTheEscapeKeyOnThatNoPersonTyped) {
    console.typed = {"a\x1D"};
    run();
    EXPECT_EQ(session.count("send 1 hex(611D)"), 1U);
}

TEST_F(PumpTest, BeginsNothingWithALineThatCannotBeOpened) {
    refuse(kOpen);
    session.infos = {"Channel is a already in use by Bios"};
    try {
        run();
        FAIL() << "went on";
    } catch (const Refused& refused) {
        EXPECT_STREQ(refused.what(), "refused: Error 0xA000000: Channel is a already in use by Bios");
    }
    EXPECT_THAT(session.requests(), ElementsAre(kOpen));
    EXPECT_THAT(console.calls, ElementsAre());
}

TEST_F(PumpTest, ClosesALineThatFails) {
    refuse(kFetch);
    EXPECT_THROW(run(), Refused);
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, kFetch, kClose));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, TellsALinkThatIsLost) {
    cutAt(4);
    EXPECT_THAT(failureOf([this] { run(); }), FailsWith(Failure::Kind::ConnectionLost, "cut"));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, ClosesTheLineAfterASignal) {
    console.isPerson = true;
    session.before = [this](const std::string&, std::size_t number) -> std::optional<Answer> {
        if (number == 5)
            interruption.raise(SIGTERM);
        return std::nullopt;
    };
    try {
        run();
        FAIL() << "went on";
    } catch (const Interrupted& interrupted) {
        EXPECT_EQ(interrupted.signal(), SIGTERM);
    }
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, "getall 1 (4 times)", kClose));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, IsInterruptedWhileTheLineNeverStopsTalking) {
    session.incoming.assign(100, kFull);
    session.before = [this](const std::string&, std::size_t number) -> std::optional<Answer> {
        if (number == 5)
            interruption.raise(SIGINT);
        return std::nullopt;
    };
    EXPECT_THROW(run(), Interrupted);
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, "getall 1 (4 times)", kClose));
}

TEST_F(PumpTest, ClosesTheLineWhenNobodyTakesWhatComes) {
    session.incoming = {"a"};
    console.onWrite = [] { throw std::system_error(EPIPE, std::system_category()); };
    EXPECT_THROW(run(), std::system_error);
    EXPECT_THAT(session.requests(), ElementsAre(kOpen, kFetch, kClose));
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, TellsALineThatCannotBeClosed) {
    refuse(kClose);
    EXPECT_THROW(run(), Refused);
    EXPECT_THAT(console.calls, ElementsAre("begin", "end"));
}

TEST_F(PumpTest, PassesOnWhatTheUnitSays) {
    session.infos = {"startup status"};
    run();
    EXPECT_THAT(infos, testing::SizeIs(10));
    EXPECT_THAT(infos, Each("startup status"));
}

} // namespace
} // namespace station
