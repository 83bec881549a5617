#include "model/Drawing.h"
#include "model/ExecModel.h"
#include "model/Notation.h"

Request drawExec(Drawing& drawing) {
    constexpr std::uint32_t kLimitSeconds = 60;
    const std::string mark = "n" + std::to_string(drawing.dice.below(1'000'000));
    const std::string note = ExecModel::note(drawing.part);
    const std::string commands[] = {"true",         "false",       "kill -9 $$",
                                    "echo " + mark, "cat " + note, "echo " + mark + " >" + note};
    const std::string& command = drawing.dice.oneOf(commands);
    if (!drawing.inFrames)
        return drawing.line("exec command", {drawing.number(kLimitSeconds), Word::text(command)});
    return Request::ofFrame(std::string{'c', 1, 0, asByte(kLimitSeconds)} + command);
}

Request drawStatus(Drawing& drawing) {
    const std::uint32_t file = drawing.dice.below(6);
    if (!drawing.inFrames)
        return file == 0 ? drawing.line("status", {})
                         : drawing.line("status 0" + std::to_string(file), {});
    return Request::ofFrame(file == 0 ? std::string("s") : std::string{'s', asByte(file)});
}

Request drawAcknowledgement(Drawing& drawing) {
    return drawing.inFrames ? Request::ofFrame("\6" + drawing.dice.bytes(drawing.dice.below(3)))
                            : drawing.line("ack", {});
}

Request drawUnknown(Drawing& drawing) {
    constexpr std::uint32_t kLongest = 253;
    constexpr char kNobody[] = {'x', 'y', 'z', 'Q', 'd', '\0', '\x7F', '\xFF'};
    Dice& dice = drawing.dice;
    if (drawing.inFrames)
        return Request::ofFrame(dice.oneOf(kNobody) +
                                dice.bytes(drawing.edgeOr(dice.below(kLongest), {0, 1, 2, kLongest})));
    constexpr const char* kNames[] = {"Memory", "memor", "Error", "Info", "s", "0"};
    const std::string name =
        dice.oneIn(2) ? dice.oneOf(kNames) : "u" + std::to_string(dice.below(1'000'000));
    return drawing.line(name, {drawing.number(dice.below(1000))});
}

Request drawAudio(Drawing& drawing) {
    const std::uint32_t state = drawing.edgeOr(drawing.dice.below(2), {0, 1, 2, 255});
    constexpr const char* kStates[] = {"deactivate", "activate"};
    if (drawing.inFrames)
        return Request::ofFrame({'E', '\x80', asByte(state)});
    return drawing.line(std::string("audio ") + (state < 2 ? kStates[state] : "toggle"), {});
}

Request drawGraphic(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const std::uint32_t first = drawing.edgeOr(dice.oneIn(2) ? 0 : 2, {0, 1, 2, 3, 4, 255});
    const std::uint32_t second = drawing.edgeOr(dice.below(2), {0, 1, 2, 3, 255});
    const bool displays = dice.oneIn(2);
    if (!drawing.inFrames)
        return drawing.line(displays ? "graphic display" : "graphic capture",
                            {drawing.number(first), drawing.number(second)});
    if (displays)
        return Request::ofFrame({'G', '\xA0', asByte(first), asByte(second)});
    return Request::ofFrame({'G', '\xA1', 0, asByte(first), asByte(second)});
}
