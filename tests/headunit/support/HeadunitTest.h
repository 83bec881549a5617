#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "support/Program.h"
#include "support/TestFiles.h"

namespace headunit_test {

/// Runs the finished program, whose units lie in a TMPDIR of the case's own.
class HeadunitTest : public testing::Test {
protected:
    using Words = std::vector<std::string>;

    static Words joined(Words words, const Words& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    static Words exec(const Words& rest) { return joined({HEADUNIT_PROGRAM, "exec"}, rest); }

    /// On a machine of its own, so that the daemon's port is free in it.
    static Words run(const Words& rest, const Words& host = {}) {
        return joined(joined({PRIVATE_HOST}, host), joined({HEADUNIT_PROGRAM, "run"}, rest));
    }

    Program::Surroundings surroundings() const { return {"", {{"TMPDIR", m_temporary.path()}}}; }

    static Words runStandIn(const Words& rest = {}, const Words& host = {}) {
        return run(joined({"--daemon-path", STANDIN_DAEMON}, rest), host);
    }

    static Words inPlace(const TestFolder& root, const Words& more = {}) {
        return runStandIn(joined({"--in-place", "--yes-change-this-machine"}, more),
                          {"--root", root.path()});
    }

    static Words inShell(const std::string& script, const Words& options = {}) {
        return exec(joined(options, {"--", "sh", "-c", script}));
    }

    Outcome outcomeOf(const Words& command) const { return Program(command, surroundings()).outcome(); }

    /// Ends what runs as a user does who is done.
    static void stop(Program& program) {
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0) << program.error();
    }

    /// The output of a shell script in a fresh unit; what it says beside that is in `m_error`.
    std::string outputOf(const std::string& script, const Words& options = {}) {
        const Outcome outcome = outcomeOf(inShell(script, options));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        m_error = outcome.errors;
        return outcome.output;
    }

    /// The same of one that says nothing else.
    std::string quietOutputOf(const std::string& script, const Words& options = {}) {
        const std::string output = outputOf(script, options);
        EXPECT_EQ(m_error, "");
        return output;
    }

    TestFolder m_temporary;
    std::string m_error;
};

} // namespace headunit_test
