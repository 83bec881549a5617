// What the station puts on a line: the daemon's scanner reads each argument as the bytes that the
// station says it will.

#include <string>
#include <vector>

#include "Expect.h"
#include "Input.h"
#include "client/Failure.h"
#include "client/Quoting.h"
#include "client/Request.h"
#include "client/forms/CommandArguments.h"
#include "frontends/CommandLexer.h"
#include "frontends/LineAssembler.h"

namespace {

using Arguments = std::vector<std::string>;
using Tokens = std::vector<std::vector<char>>;

/// The text, for which no better way was found: it has all bytes.
void expectEncodes(std::string_view bytes) {
    const std::string argument = station::base64Argument(bytes);
    expect(station::isBase64Argument(argument) && station::isEncodedArgument(argument),
           "An encoded argument is known as one");
    // There is no empty argument.
    if (!bytes.empty())
        expectSame(bytes, station::argumentBytes(argument), "bytes that were encoded");
}

Tokens scan(const std::string& line) {
    LineAssembler assembler;
    expect(assembler.append(line.data(), line.size()), "A request is a whole line");
    return CommandLexer::scan(assembler);
}

/// Throws what the station throws of arguments that it cannot say the bytes of.
void compare(const Tokens& tokens, const Arguments& arguments) {
    const station::CommandArguments said(arguments);
    expectSame<std::size_t>(said.size() + 1, tokens.size(), "the number of tokens");
    for (std::size_t at = 0; at < said.size(); ++at)
        expectSame(said.bytes(at), {tokens[at + 1].data(), tokens[at + 1].size()},
                   ("what a unit reads of " + readable(arguments[at])).c_str());
}

void expectRefusal(const station::Failure& failure) {
    expect(failure.kind() == station::Failure::Kind::InvalidRequest,
           "What cannot travel is refused as such");
}

void expectNoControlCharacter(std::string_view message) {
    for (const char character : message)
        expect(static_cast<unsigned char>(character) >= ' ' && character != '\x7F',
               "What is said of an argument has no control characters");
}

} // namespace

/// The command's name, of one byte's length, and each argument, of one byte's length, too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string name(input.bytes(input.byte() % 8));
    Arguments arguments;
    while (!input.isEmpty()) {
        const std::size_t length = input.byte();
        arguments.emplace_back(input.bytes(length));
        expectEncodes(arguments.back());
    }
    try {
        const station::Request request(name, arguments);
        const Tokens tokens = scan(request.bytes());
        expect(!tokens.empty(), "A request has a command");
        expectSame(name + '\0', {tokens[0].data(), tokens[0].size()}, "the command");
        compare(tokens, arguments);
    } catch (const station::Failure& failure) {
        expectRefusal(failure);
        if (station::isCommandName(name))
            expectNoControlCharacter(failure.what());
    }
    return 0;
}
