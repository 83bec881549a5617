// The generated scanner of command lines says of any lines, one after the other, what the one says that
// was written by hand: the same tokens, and the same text on standard output.

#include <unistd.h>

#include <algorithm>
#include <string>

#include "Expect.h"
#include "Input.h"
#include "PlainScanner.h"
#include "frontends/CommandLexer.h"
#include "frontends/LineAssembler.h"

namespace {

std::string s_output; // what was written to standard output

constexpr char kLineBreak = '\xFF'; // a byte that no rule knows

std::string_view asText(const std::vector<char>& token) {
    return {token.data(), token.size()};
}

void expectSameTokens(const PlainScanner::Tokens& expected, const PlainScanner::Tokens& actual) {
    for (std::size_t at = 0; at < std::min(expected.size(), actual.size()); ++at)
        expectSame(asText(expected[at]), asText(actual[at]), "a token");
    expectSame(expected.size(), actual.size(), "the number of tokens");
}

void expectSameScan(PlainScanner& plain, std::string_view line) {
    LineAssembler assembler;
    assembler.append(line.data(), line.size());
    s_output.clear();
    const PlainScanner::Tokens tokens = CommandLexer::scan(assembler);
    plain.scan(line);
    expectSameTokens(plain.tokens(), tokens);
    expectSame(plain.echo(), s_output, "the echo");
    expect(assembler.line().empty(), "The line is gone");
}

} // namespace

// The linker puts this between the daemon and its standard output.
extern "C" ssize_t __real_write(int, const void*, size_t);
extern "C" ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    if (descriptor != STDOUT_FILENO)
        return __real_write(descriptor, bytes, count);
    s_output.append(static_cast<const char*>(bytes), count);
    return static_cast<ssize_t>(count);
}

/// Lines with 0xFF between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    PlainScanner plain;
    expectSameScan(plain,
                   "\x02"
                   "begin\x03\n"); // the daemon's remembers what came before
    std::string_view rest = input.rest();
    for (;;) {
        const std::size_t end = rest.find(kLineBreak);
        expectSameScan(plain, rest.substr(0, end));
        if (end == std::string_view::npos)
            return 0;
        rest.remove_prefix(end + 1);
    }
}
