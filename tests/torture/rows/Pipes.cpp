// Commands whose text is more than a pipe takes, and whose output is more than a link takes.
#include <gtest/gtest.h>

#include <string>

#include "Ordeal.h"
#include "rows/Rows.h"

namespace {

constexpr std::size_t kMuch = std::size_t{1} << 20;

/// The longest that a frame carries.
std::string paddedText(Link link, const std::string& text) {
    constexpr std::size_t kLongestInFrame = 250;
    const std::size_t length = link == Link::Frames ? kLongestInFrame : kMuch;
    return text + std::string(length - text.size(), 'x');
}

/// A script that writes as much as it is long, while it is being read.
Spoken talkingScript(Link link) {
    const std::string word(200, 'y');
    std::string text;
    std::string output;
    while (text.size() < (link == Link::Frames ? 1 : kMuch)) {
        text += "echo " + word + "\n";
        output += word + "\n";
    }
    if (link == Link::Frames)
        text.pop_back(); // no frame carries a line feed
    return shellCommand(link, 60, text, output);
}

} // namespace

void filledPipes(Ordeal& ordeal) {
    const Link link = ordeal.link;
    const std::string separator = link == Link::Frames ? "; : " : "\n: ";
    const std::string output(kMuch, 'z');
    for (unsigned round = 0; round < ordeal.times(2, 50) && !testing::Test::HasFailure(); ++round) {
        // It neither reads the rest of its text nor ends, and has written much.
        ordeal.expect(killedCommand(link, 1, paddedText(link, "sleep 1000" + separator), ""));
        if (link != Link::Frames) {
            const std::string text = "head -c 1048576 /dev/zero | tr '\\000' z; sleep 1000\n: ";
            ordeal.expect(killedCommand(link, 2, paddedText(link, text), output));
        }
        ordeal.expect(shellCommand(link, 60, paddedText(link, "exit" + separator), ""));
        ordeal.expect(shellCommand(link, 60, paddedText(link, "exec 0<&-" + separator), ""));
        ordeal.expect(shellCommand(link, 60, "head -c 1048576 /dev/zero | tr '\\000' z", output));
        ordeal.expect(talkingScript(link));
    }
}
