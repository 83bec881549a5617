#include "model/Report.h"

#include <gtest/gtest.h>

#include <cctype>

#include "model/Notation.h"

namespace {

constexpr char kBegin[] =
    "# On a new unit (headunit run) whose receiver is off; LINE is the terminal that it names.\n";

/// Bytes as text that cannot harm a terminal.
std::string shown(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        text += code < 0x80 && std::isprint(code) != 0 ? std::string(1, byte)
                                                       : formatted("\\x%02X", unsigned{code});
    }
    return text;
}

} // namespace

std::string report(const Sequence& sequence, const Mismatch& mismatch, const Unit& unit) {
    Model model = unit.model();
    std::string text = kBegin;
    for (std::size_t at = 0; at < sequence.size(); ++at) {
        const Request& request = sequence[at];
        const bool isWithTheOneBefore =
            at > 0 && sequence[at - 1].phase == request.phase && sequence[at - 1].link != request.link;
        if (isWithTheOneBefore)
            text += "# at the same time as the one before:\n";
        text += pasted(request, unit.target(request.link)) +
                formatted(" # link %d, phase %d\n", request.link, request.phase);
        if (!model.knows(request))
            continue;
        const Model::Prediction expected = model.predict(request);
        if (at == mismatch.at)
            text += "#   expected " + shown(mismatch.expected) + "\n#   received " +
                    shown(mismatch.received) + "\n";
        else
            text += "#   answered " + shown(expected.bytes) + "\n";
    }
    return text;
}
