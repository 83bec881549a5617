// The assembler of command lines: whatever reads return, it tells the same lines as a string that holds
// all of them.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "Expect.h"
#include "Input.h"
#include "frontends/LineAssembler.h"

namespace {

constexpr std::size_t kKept = 4096; // what an assembler may keep of a line that has gone

/// A line ends where a read ends in ETX, LF.
bool isComplete(std::string_view received) {
    return received.size() >= 2 && received.substr(received.size() - 2) == "\x03\n";
}

/// The scanner writes behind a line before it is gone.
void writeBehind(LineAssembler& assembler, std::size_t room) {
    char* const line = assembler.data(room);
    if (room == 0)
        return;
    std::memset(line + assembler.line().size(), 0xEE, room);
}

/// As a line comes that was typed: its end is seen when its last byte comes, and before where it holds
/// another.
void expectSameByteByByte(std::string_view line) {
    LineAssembler assembler;
    for (std::size_t at = 0; at < line.size(); ++at)
        expectSame<int>(isComplete(line.substr(0, at + 1)), assembler.append(&line[at], 1),
                        "a complete line, byte by byte");
    expectSame(line, assembler.line(), "the line, byte by byte");
}

} // namespace

/// Of each read, its length in one byte, of which the highest bits ask for more, and then its bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    LineAssembler assembler;
    std::string received;
    while (!input.isEmpty()) {
        const unsigned control = input.byte();
        const std::string_view read = input.bytes(control & 0x3F);
        // A long line is made of the same bytes many times.
        for (unsigned times = (control & 0xC0) == 0xC0 ? 100 : 1; times > 0; --times) {
            received += read;
            const bool isEnd = !read.empty() && isComplete(received);
            expectSame<int>(isEnd, assembler.append(read.data(), read.size()), "a complete line");
            expectSame(received, assembler.line(), "the line so far");
            expect(assembler.capacity() >= received.size(), "There is memory for the line");
        }
        if ((control & 0xC0) == 0x40)
            writeBehind(assembler, read.size() * 100);
        expectSame(received, assembler.line(), "the line that was written behind");
        if (isComplete(received) || (control & 0xC0) == 0x80) {
            expectSameByteByByte(received);
            assembler.reset();
            received.clear();
            expect(assembler.line().empty(), "The next line is empty");
            expect(assembler.capacity() <= kKept, "The memory of a long line is given back");
        }
    }
    return 0;
}
