#include "session/ParallelSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "client/Failure.h"

namespace station {
namespace {

using testing::ElementsAre;

/// What the links of a session have been asked, in the order in which it happened: "0<status" is begun
/// and "0>status" finished on the first link.
struct Events {
    std::vector<std::string> all;
    std::size_t links = 0;     ///< that were opened
    std::size_t mostLinks = 8; ///< that can be
    std::string cut;           ///< the command that gets no answer
};

class LoggedLink : public Session {
public:
    explicit LoggedLink(Events& events) : m_events(events), m_name(std::to_string(events.links++)) {}

    void begin(const std::string& name, const std::vector<std::string>&) override {
        m_command = name;
        m_events.all.push_back(m_name + "<" + name);
    }

    Answer finish(const InfoSink& onInfo) override {
        m_events.all.push_back(m_name + ">" + m_command);
        if (m_command == m_events.cut)
            throw Failure(Failure::Kind::ConnectionLost, "cut");
        onInfo("info of " + m_command);
        return {m_command};
    }

private:
    Events& m_events;
    std::string m_name;
    std::string m_command;
};

class ParallelSessionTest : public testing::Test {
protected:
    std::string finish() {
        return session.finish([this](const std::string& message) { infos.push_back(message); }).text;
    }

    Failure::Kind failureOfBeginning(const std::string& name) {
        try {
            session.begin(name, {});
        } catch (const Failure& failure) {
            return failure.kind();
        }
        ADD_FAILURE() << name << " was begun";
        return Failure::Kind::InvalidRequest;
    }

    Events events;
    std::vector<std::string> infos;
    ParallelSession session{[this]() -> std::unique_ptr<Session> {
        if (events.links == events.mostLinks)
            throw Failure(Failure::Kind::CannotConnect, "enough");
        return std::make_unique<LoggedLink>(events);
    }};
};

TEST_F(ParallelSessionTest, OpensOneLinkUntilMoreAreWanted) {
    session.execute("a", {}, [](const std::string&) {});
    session.execute("b", {}, [](const std::string&) {});
    EXPECT_THAT(events.all, ElementsAre("0<a", "0>a", "0<b", "0>b"));
    EXPECT_EQ(events.links, 1U);
    EXPECT_EQ(session.widen(), ParallelSession::kMostLinks);
    EXPECT_EQ(session.widen(), ParallelSession::kMostLinks);
    EXPECT_EQ(events.links, ParallelSession::kMostLinks);
}

TEST_F(ParallelSessionTest, AnswersInTheOrderInWhichItWasAsked) {
    events.mostLinks = 2;
    ASSERT_EQ(session.widen(), 2U);
    session.begin("a", {});
    session.begin("b", {});
    EXPECT_EQ(finish(), "a");
    session.begin("c", {});
    EXPECT_EQ(finish(), "b");
    EXPECT_EQ(finish(), "c");
    EXPECT_THAT(events.all, ElementsAre("1<a", "0<b", "1>a", "1<c", "0>b", "1>c"));
    EXPECT_THAT(infos, ElementsAre("info of a", "info of b", "info of c"));
}

TEST_F(ParallelSessionTest, MakesDoWithTheLinksThatItGets) {
    events.mostLinks = 1;
    EXPECT_EQ(session.widen(), 1U);
    events.mostLinks = 8;
    EXPECT_EQ(session.widen(), 1U) << "a unit that has refused is not asked again";
}

TEST_F(ParallelSessionTest, DropsTheAnswersThatNobodyWants) {
    session.widen();
    session.begin("a", {});
    session.begin("b", {});
    session.abandon();
    EXPECT_THAT(events.all, ElementsAre("3<a", "2<b", "3>a", "2>b"));
    session.begin("c", {});
    EXPECT_EQ(finish(), "c");
}

TEST_F(ParallelSessionTest, DoesNotAskALostLinkAgain) {
    events.mostLinks = 2;
    session.widen();
    events.cut = "a";
    session.begin("a", {});
    EXPECT_THROW(finish(), Failure);
    session.begin("b", {});
    EXPECT_EQ(finish(), "b");
    EXPECT_THAT(events.all, ElementsAre("1<a", "1>a", "0<b", "0>b"));
    session.begin("a", {});
    EXPECT_THROW(finish(), Failure);
    EXPECT_EQ(failureOfBeginning("c"), Failure::Kind::ConnectionLost);
}

TEST_F(ParallelSessionTest, WaitsInVainOnceOnly) {
    session.widen();
    events.cut = "b";
    for (const char* name : {"a", "b", "c", "d"})
        session.begin(name, {});
    session.abandon();
    EXPECT_THAT(events.all, ElementsAre("3<a", "2<b", "1<c", "0<d", "3>a", "2>b"));
    session.begin("e", {});
    EXPECT_EQ(finish(), "e");
    EXPECT_EQ(events.all.back(), "3>e");
}

} // namespace
} // namespace station
