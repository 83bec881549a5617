#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/AbstractCmd.h"
#include "support/FrontEnd.h"
#include "support/Rows.h"

using Response = std::unique_ptr<ProcessResponse>;
using Words = std::vector<std::string>;

constexpr unsigned int kGenericError = 0x01010000;

/// Runs a request as the dispatcher would.
Response runRequest(AbstractCmd& command, Bytes frame);
Response runRequest(AbstractCmd& command, Tokens line);

/// That a response carries an error and nothing else.
void expectError(const ProcessResponse& response, unsigned int code, const std::string& text);
inline void expectError(const Response& response, unsigned int code, const std::string& text) {
    expectError(*response, code, text);
}

/// That the response to a request carries this error, and that a station gets the text and then the
/// code. What has nothing to echo is only run.
void expectRefused(AbstractCmd& command, const Bytes& frame, unsigned int code, const std::string& text);
void expectRefused(AbstractCmd& command, const Tokens& line, unsigned int code, const std::string& text);

/// A request that is refused, as a row of a table.
template <typename Request>
struct Refusal {
    Request request;
    unsigned int code;
    std::string text;
};
using RefusedFrames = std::vector<Refusal<Bytes>>;
using RefusedLines = std::vector<Refusal<Words>>;

/// The bench for one command, in a fixture with what the command needs.
template <typename Command, typename Unit = ::testing::Test>
class CommandTest : public Unit {
protected:
    CommandTest() { command(); }

    static Command& command() { return *Command::getInstance(); }

    static Response run(Bytes frame) { return runRequest(command(), std::move(frame)); }
    static Response run(Tokens line) { return runRequest(command(), std::move(line)); }
    static Response run(const Words& words) { return run(tokens(words)); }

    static void expectIdAndName(char id, const std::string& name) {
        EXPECT_EQ(command().tavrin_getName(), id);
        EXPECT_EQ(command().ascii_getName(), name);
        EXPECT_EQ(Command::getInstance(), Command::getInstance());
    }

    static void expectRefused(const Bytes& frame, unsigned int code, const std::string& text) {
        ::expectRefused(command(), frame, code, text);
    }
    static void expectRefused(const Tokens& line, unsigned int code, const std::string& text) {
        ::expectRefused(command(), line, code, text);
    }
    static void expectRefused(const Words& words, unsigned int code, const std::string& text) {
        expectRefused(tokens(words), code, text);
    }
    template <typename Request>
    static void expectRefused(const std::vector<Refusal<Request>>& rows) {
        for (const Refusal<Request>& row : rows)
            expectRefused(row.request, row.code, row.text);
    }
};
