#pragma once

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "frontends/CommandLexer.h"
#include "frontends/LineAssembler.h"
#include "support/Lines.h"
#include "support/RecordingListener.h"

/// What a scan leaves behind.
struct Scan {
    Tokens tokens;
    std::string echo; ///< what went to standard output
};

inline bool operator==(const Scan& left, const Scan& right) {
    return left.tokens == right.tokens && left.echo == right.echo;
}

inline void PrintTo(const Scan& scan, std::ostream* out) {
    *out << ::testing::PrintToString(scan.tokens) << " and the echo "
         << ::testing::PrintToString(scan.echo);
}

/// The tokens of one line.
inline Tokens scanTokens(const std::string& line) {
    LineAssembler assembler;
    assembler.append(line.data(), line.size());
    return CommandLexer::scan(assembler);
}

/// A token of decoded data, which has no zero byte of its own at its end.
inline std::vector<char> decoded(const std::string& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// There is one scanner per process and it remembers: each case begins outside of a command, with the
/// single token "old" in the list.
class LexerFixture : public ::testing::Test {
protected:
    LexerFixture() { startOver(); }

    static void startOver() { scanTokens(request("old")); }

    static Scan scan(const std::string& line) {
        ::testing::internal::CaptureStdout();
        Tokens tokens = scanTokens(line);
        return {std::move(tokens), ::testing::internal::GetCapturedStdout()};
    }
};
