#include "model/Drawing.h"
#include "model/Notation.h"
#include "model/SerialModel.h"

namespace {

using namespace std::string_literals;

enum Code : char { Open, Close, Send, Get, GetAll };
constexpr const char* kWords[] = {"open", "close", "send", "get", "getall"};

// Fetching from a line on which nothing waits takes 20 ms.
constexpr std::uint32_t kOneFetchIn = 12;

std::uint32_t drawChannel(Drawing& drawing) {
    constexpr std::uint32_t kOwn[] = {0, SerialModel::kWlan, 2, SerialModel::kBluetooth};
    constexpr std::uint32_t kNone[] = {4, 5, 127, 239, 242, 255};
    return drawing.dice.oneIn(16) ? drawing.dice.oneOf(kNone)
                                  : kOwn[static_cast<std::size_t>(drawing.part)];
}

Request ofChannel(const Drawing& drawing, Code code, std::uint32_t channel) {
    if (!drawing.inFrames)
        return drawing.line(std::string("serial ") + kWords[static_cast<std::size_t>(code)],
                            {drawing.number(channel)});
    return Request::ofFrame({'S', code, asByte(channel)});
}

Request drawOpen(Drawing& drawing, std::uint32_t channel) {
    Dice& dice = drawing.dice;
    const std::uint32_t baud =
        drawing.edgeOr(115200, {0, 49, 50, 300, 9600, 115201, 0x7FFFFFFF, 0xFFFFFFFF});
    const std::uint32_t flags = dice.oneIn(2) ? 0 : dice.below(256);
    Request request = ofChannel(drawing, Open, channel);
    if (drawing.inFrames) {
        request.frame += bigEndian32(baud) + asByte(flags);
    } else {
        request.words.push_back(drawing.number(baud));
        request.words.push_back(drawing.number(flags));
    }
    return request;
}

/// Host commands of the wireless chip, some of them cut.
std::string drawHostCommands(Dice& dice) {
    const std::string address = "\2\0\0\0"s + dice.bytes(2);
    const std::string sequence = dice.bytes(2);
    const std::string commands[] = {
        "\3\0\x8\0"s + sequence + "\0\0"s,
        "\x4D\0\x10\0"s + sequence + "\0\0\1\0"s + address,
        "\x4D\0\x10\0"s + sequence + "\0\0\0\0"s + address,
        "\x4D\0\x0A\0"s + sequence + "\0\0\1\0"s,
        "\xA9\0\x8\0"s + sequence + "\0\0"s,
        "\x42\0\x8\0"s + sequence + "\0\0"s,
    };
    std::string all = dice.oneOf(commands);
    if (dice.oneIn(4))
        all += dice.oneOf(commands);
    if (dice.oneIn(16))
        return "\3\0"s + dice.bytes(2);
    return dice.oneIn(4) ? all.substr(dice.oneIn(2) ? 0 : dice.below(8), dice.between(1, 12)) : all;
}

Request drawSend(Drawing& drawing, std::uint32_t channel) {
    const std::string data = channel == SerialModel::kWlan
                                 ? drawHostCommands(drawing.dice)
                                 : drawing.dice.bytes(drawing.dice.between(1, 40));
    Request request = ofChannel(drawing, Send, channel);
    if (drawing.inFrames)
        request.frame += data;
    else
        request.words.push_back(drawing.data(data));
    return request;
}

Request drawGet(Drawing& drawing, std::uint32_t channel) {
    const std::uint32_t count = drawing.edgeOr(drawing.dice.between(1, 40), {0, 1, 242, 243, 255});
    Request request = ofChannel(drawing, Get, channel);
    if (drawing.inFrames)
        request.frame += asByte(count);
    else
        request.words.push_back(drawing.number(count));
    return request;
}

} // namespace

Request drawSerial(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const std::uint32_t channel = drawChannel(drawing);
    const bool isQuick = channel == SerialModel::kWlan;
    if (isQuick ? dice.oneIn(3) : dice.oneIn(kOneFetchIn))
        return dice.oneIn(3) ? ofChannel(drawing, GetAll, channel) : drawGet(drawing, channel);
    const std::uint32_t choice = dice.below(8);
    if (choice == 0)
        return ofChannel(drawing, Close, channel);
    return choice < 3 ? drawOpen(drawing, channel) : drawSend(drawing, channel);
}
