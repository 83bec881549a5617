#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>

#include "FailureKind.h"
#include "Steps.h"
#include "client/Hex.h"
#include "client/Link.h"

namespace station {

/// A link on which exactly the given things happen, in this order. At the end of the script nothing
/// arrives.
class PlayedLink : public Link {
public:
    explicit PlayedLink(Steps steps) : m_steps(std::move(steps)) {}
    ~PlayedLink() override { EXPECT_EQ(m_at, m_steps.size()) << "the rest of the script was not used"; }

    void send(std::string_view bytes, const Deadline&) override {
        ASSERT_TRUE(isNext(Step::Sent)) << "sent in between: " << hexDigits(bytes);
        EXPECT_EQ(hexDigits(m_steps[m_at++].bytes), hexDigits(bytes));
    }

    std::optional<std::string> receiveBy(const Deadline&) override {
        if (m_at == m_steps.size() || isNext(Step::Sent))
            return std::nullopt;
        const Step& step = m_steps[m_at++];
        if (step.kind == Step::Silence)
            return std::nullopt;
        return step.bytes;
    }

private:
    bool isNext(Step::Kind kind) const { return m_at < m_steps.size() && m_steps[m_at].kind == kind; }

    Steps m_steps;
    std::size_t m_at = 0;
};

/// What a client tells ahead of an answer.
using Infos = std::vector<std::string>;

template <typename... Messages>
Infos told(const Messages&... messages) {
    return {std::string(messages)...};
}

inline std::function<void(const std::string&)> sinkInto(Infos& infos) {
    return [&infos](const std::string& message) { infos.push_back(message); };
}

/// A command, as a shell takes it, that is answered over a link on which these things happen.
struct AnsweredRun {
    const char* title;
    std::string command;
    Steps steps;
    std::string text;
    std::uint32_t code;
    Infos infos;

    friend void PrintTo(const AnsweredRun& run, std::ostream* out) { *out << run.command; }
};

/// One that gets no answer, and a part of what is said about it.
struct FailedRun {
    const char* title;
    std::string command;
    Steps steps;
    Failure::Kind kind;
    std::string message;
    Infos infos;

    friend void PrintTo(const FailedRun& run, std::ostream* out) { *out << run.command; }
};

} // namespace station
