// The commands, asked by lines: whatever they are, each is answered as every line is, and in a new unit
// the same lines come to the same end.

#include <string>

#include "Expect.h"
#include "support/CommandRun.h"
#include "support/Lines.h"

namespace {

std::string runAll(const Lines& lines) {
    CommandRun::renew(lines.faults);
    std::string transcript;
    for (const std::string& line : lines.requests)
        transcript += CommandRun::run(line).transcript;
    return transcript;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Lines lines({reinterpret_cast<const char*>(data), size});
    const std::string transcript = runAll(lines);
    expectSame(transcript, runAll(lines), "what the same lines lead to in a new unit");
    return 0;
}
