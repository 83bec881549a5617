#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "model/Generator.h"
#include "model/Player.h"
#include "model/Report.h"
#include "model/Shrinker.h"
#include "support/BinaryFrames.h"
#include "support/Lines.h"

namespace {

constexpr std::uint64_t kSeed = 4711;
constexpr std::size_t kRequests = 2'000;
constexpr std::size_t kMostAttempts = 400;
constexpr char kStamp[] = "2024/02/29 12:34:56";

constexpr char kWrong[] = "wrong";

/// A unit that answers as its own model says, but for one mistake.
class MistakenUnit : public Unit {
public:
    /// Whether the answer to this request is wrong, all the requests before it being known, too.
    using Mistake = std::function<bool(const Sequence& before, const Request& request)>;

    explicit MistakenUnit(Mistake mistake) : m_mistake(std::move(mistake)) { restart(); }

    void restart() override {
        m_model = std::make_unique<Model>(kStamp, 0);
        m_before.clear();
    }

    Model model() const override { return {kStamp, 0}; }

    std::string exchange(const Request& request, const Model::Prediction&) override {
        const std::scoped_lock lock(m_mutex);
        const std::string right = m_model->predict(request).bytes;
        const bool isWrong = m_mistake(m_before, request);
        m_before.push_back(request);
        return isWrong ? kWrong : right;
    }

    bool shows(const Effect&) override { return true; }

    std::string target(int link) const override { return "link" + std::to_string(link); }

private:
    Mistake m_mistake;
    std::mutex m_mutex;
    std::unique_ptr<Model> m_model;
    Sequence m_before;
};

std::string lineOf(const Request& request) {
    return request.isFrame() ? "" : request.sent();
}

bool begins(const Request& request, const std::string& words) {
    return lineOf(request).compare(0, words.size() + 1, "\x02" + words) == 0;
}

bool isAmong(const Sequence& requests, const std::function<bool(const Request&)>& condition) {
    return std::any_of(requests.begin(), requests.end(), condition);
}

/// What a mistake comes down to.
class ModelShrinkTest : public testing::Test {
protected:
    void shrink(const MistakenUnit::Mistake& mistake, bool inFrames) {
        MistakenUnit unit(mistake);
        Model model = unit.model();
        const Sequence sequence = generate(kSeed, kRequests, {inFrames, false, false, false}, model);
        const auto first = play(sequence, unit);
        ASSERT_TRUE(first) << "the mistake does not show";
        Shrinker shrinker(
            [&](const Sequence& candidate) -> std::optional<std::size_t> {
                unit.restart();
                last = play(candidate, unit);
                return last ? std::optional(last->at) : std::nullopt;
            },
            kMostAttempts);
        shortest = shrinker.shrink(sequence, first->at);
        attempts = shrinker.attempts();
        unit.restart();
        last = play(shortest, unit);
        ASSERT_TRUE(last) << "what is left does not show the mistake";
        EXPECT_LT(attempts, kMostAttempts);
        text = report(shortest, *last, unit);
    }

    Sequence shortest;
    std::size_t attempts = 0;
    std::optional<Mismatch> last;
    std::string text;
};

TEST_F(ModelShrinkTest, AMistakeThatNeedsAnotherRequestBeforeIsTwoRequests) {
    const auto writesPort = [](const Request& request) { return begins(request, "port write 3 "); };
    shrink(
        [&](const Sequence& before, const Request& request) {
            return begins(request, "memory read 16bit") && isAmong(before, writesPort);
        },
        false);
    ASSERT_EQ(shortest.size(), 2U) << text;
    EXPECT_EQ(lineOf(shortest[0]), request("port write 3 0")) << text;
    EXPECT_EQ(lineOf(shortest[1]), request("memory read 16bit 0 0")) << text;
}

TEST_F(ModelShrinkTest, AMistakeOfOneRequestIsThatRequestWithPlainArguments) {
    shrink(
        [](const Sequence&, const Request& request) {
            return begins(request, "memory write 8bit ") && request.words.size() > 5 &&
                   request.words[5].bytes.size() >= 10;
        },
        false);
    ASSERT_EQ(shortest.size(), 1U) << text;
    EXPECT_EQ(lineOf(shortest[0]), request("memory write 8bit 0 0 hex(00000000000000000000)")) << text;
}

TEST_F(ModelShrinkTest, AMistakeOfFramesIsAShortFrame) {
    shrink(
        [](const Sequence&, const Request& request) {
            return request.isFrame() && request.frame.size() >= 4 && request.frame[0] == 'i' &&
                   request.frame[3] == '\x50';
        },
        true);
    ASSERT_EQ(shortest.size(), 1U) << text;
    EXPECT_EQ(shortest[0].sent(), framed(std::string{'i', 0, 0, '\x50'})) << text;
}

TEST_F(ModelShrinkTest, AMistakeOfRequestsThatMeetIsTwoThatMeet) {
    const auto belongs = [](const Request& request) {
        return (request.link == 1 && begins(request, "memory")) ||
               (request.link == 2 && begins(request, "diag"));
    };
    shrink(
        [&](const Sequence& before, const Request& request) {
            return belongs(request) && isAmong(before, [&](const Request& other) {
                       return belongs(other) && other.phase == request.phase &&
                              other.link != request.link;
                   });
        },
        false);
    ASSERT_EQ(shortest.size(), 2U) << text;
    EXPECT_EQ(shortest[0].phase, shortest[1].phase) << text;
    EXPECT_NE(text.find("# at the same time as the one before:"), std::string::npos) << text;
}

TEST_F(ModelShrinkTest, WhatIsLeftCanBePasted) {
    shrink([](const Sequence&, const Request& request) { return begins(request, "port read 3"); },
           false);
    const std::string link = std::to_string(shortest[0].link);
    const std::string phase = std::to_string(shortest[0].phase);
    EXPECT_EQ(text.substr(text.find('\n') + 1),
              "station --target link" + link + " port read 3 # link " + link + ", phase " + phase +
                  "\n#   expected \\x02#port hex(0307)\\x03\\x0A\n#   received wrong\n");
}

} // namespace
