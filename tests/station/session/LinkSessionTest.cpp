#include "session/LinkSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <deque>

#include "client/Failure.h"

namespace station {
namespace {

const Session::InfoSink kNobody = [](const std::string&) {};

/// Brings the given pieces, then silence for ever.
class ScriptedLink : public Link {
public:
    ScriptedLink(std::deque<std::string> pieces, Interruption& interruption)
        : m_pieces(std::move(pieces)), m_interruption(interruption) {}

    void send(std::string_view, const Deadline&) override {}

    std::optional<std::string> receiveBy(const Deadline& moment) override {
        if (m_pieces.empty()) {
            m_interruption.raise(SIGINT);
            while (!moment.expired())
                ;
            return std::nullopt;
        }
        std::string piece = m_pieces.front();
        m_pieces.pop_front();
        return piece;
    }

private:
    std::deque<std::string> m_pieces;
    Interruption& m_interruption;
};

class LinkSessionTest : public testing::Test {
protected:
    AsciiSession session(std::deque<std::string> pieces, Seconds timeout) {
        return {std::make_unique<ScriptedLink>(std::move(pieces), m_interruption), timeout,
                m_interruption, Client::EmptyAnswer::Sent};
    }

    Interruption m_interruption;
};

TEST_F(LinkSessionTest, RunsAnyNumberOfCommands) {
    auto session = this->session(
        {"\x02#memory hex(00)\x03\n", "\x02#Info \"no\"\x03\n\x02#diag Error 0x5\x03\n"}, Seconds(60));
    EXPECT_EQ(session.execute("memory", {}, kNobody).text, "hex(00)");
    std::vector<std::string> infos;
    const Answer answer =
        session.execute("diag", {}, [&](const std::string& info) { infos.push_back(info); });
    EXPECT_EQ(answer.code, 5U);
    EXPECT_THAT(infos, testing::ElementsAre("no"));
}

TEST_F(LinkSessionTest, GivesARequestUpThatIsNotAnsweredAfterAnInterruption) {
    auto session = this->session({}, Seconds(600));
    EXPECT_THROW(session.execute("memory", {}, kNobody), Interrupted);
    try {
        session.execute("memory", {}, kNobody);
        FAIL() << "went on over a link of which nothing is known";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), Failure::Kind::ConnectionLost);
    }
}

TEST_F(LinkSessionTest, TakesAnAnswerAfterAnInterruption) {
    m_interruption.raise(SIGINT);
    auto session = this->session({"\x02#memory ok\x03\n"}, Seconds(60));
    EXPECT_EQ(session.execute("memory", {}, kNobody).text, "ok");
}

TEST_F(LinkSessionTest, HasTheTimeOutForEachRequest) {
    auto session = this->session({"\x02#memory ok\x03\n"}, Seconds(0.5));
    EXPECT_EQ(session.execute("memory", {}, kNobody).text, "ok");
    EXPECT_THROW(session.execute("memory", {}, kNobody), Failure);
}

TEST_F(LinkSessionTest, StaysUsableAfterARequestThatCannotTravel) {
    auto session = this->session({"\x02#memory ok\x03\n"}, Seconds(60));
    EXPECT_THROW(session.execute("memory", {""}, kNobody), Failure);
    EXPECT_EQ(session.execute("memory", {}, kNobody).text, "ok");
}

TEST(SignalWatch, TurnsSignalsIntoAnInterruption) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Interruption interruption;
        {
            const SignalWatch watch(interruption);
            EXPECT_EQ(interruption.signal(), 0);
            std::raise(signal);
            std::raise(SIGINT); // the first counts
        }
        EXPECT_EQ(interruption.signal(), signal);
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL);
    }
}

} // namespace
} // namespace station
