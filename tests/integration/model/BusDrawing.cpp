#include "model/Drawing.h"
#include "model/I2cChips.h"
#include "model/Notation.h"
#include "model/PortModel.h"

namespace {

constexpr std::uint32_t kMostRead = 247;
constexpr char kPortCode = '\xE3';

/// The owner's chip; the last part has none, and asks those that there are not.
std::uint32_t drawSlave(Drawing& drawing) {
    constexpr std::uint32_t kChips[] = {I2cChips::kEeprom, I2cChips::kSensor, I2cChips::kExpander};
    const auto part = static_cast<std::size_t>(drawing.part);
    if (part < std::size(kChips) && !drawing.dice.oneIn(16))
        return kChips[part];
    return drawing.dice.oneOf(std::vector<std::uint32_t>{0, 1, 0x30, 0x51, 0x7F, 0x80, 0xD0, 0xFF});
}

std::uint32_t drawBus(Drawing& drawing) {
    return drawing.dice.oneIn(24) ? drawing.edgeOr(drawing.dice.between(1, 254), {1, 254}) : 0;
}

Request drawBusRead(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const std::uint32_t bus = drawBus(drawing), slave = drawSlave(drawing);
    const std::uint32_t count =
        drawing.edgeOr(dice.between(1, 16), {0, 1, kMostRead, kMostRead + 1, 255});
    const bool writesFirst = dice.oneIn(2);
    const std::string first = writesFirst ? dice.bytes(dice.between(1, 8)) : "";
    if (drawing.inFrames)
        return Request::ofFrame(std::string{'i', asByte(bus), asByte(count), asByte(slave)} + first);
    Request request =
        drawing.line("i2c read", {drawing.number(bus), drawing.number(count), drawing.number(slave)});
    if (writesFirst)
        request.words.push_back(drawing.data(dice.oneIn(16) ? "" : first));
    return request;
}

Request drawBusWrite(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const std::uint32_t bus = drawBus(drawing), slave = drawSlave(drawing);
    std::string data = dice.bytes(drawing.edgeOr(dice.below(16), {0, 1, 249, 250}));
    if (!drawing.inFrames)
        return drawing.line("i2c write",
                            {drawing.number(bus), drawing.number(slave), drawing.data(data)});
    // The slave's address is the first of the bytes at the same time.
    const auto right = static_cast<std::uint32_t>(data.size()) + 1;
    const std::uint32_t count =
        dice.oneIn(12) ? dice.oneOf(std::vector<std::uint32_t>{0, right + 1, 252, 255}) : right;
    return Request::ofFrame(std::string{'I', asByte(bus), asByte(count), asByte(slave)} + data);
}

Request drawAttribute(Drawing& drawing) {
    Dice& dice = drawing.dice;
    const std::uint32_t bus = drawBus(drawing);
    const std::uint32_t attribute = drawing.edgeOr(dice.below(2), {0, 1, 2, 255});
    if (!drawing.isAlone || dice.oneIn(2)) {
        if (!drawing.inFrames)
            return drawing.line("i2c getattributes", {drawing.number(bus), drawing.number(attribute)});
        return Request::ofFrame({'i', '\xFF', asByte(bus), asByte(attribute)});
    }
    const std::string value =
        attribute == 0
            ? std::string(1, asByte(drawing.edgeOr(dice.below(2), {2, 255})))
            : bigEndian16(dice.oneOf(std::vector<std::uint32_t>{100, 400, 100, 400, 0, 200, 0xFFFF}));
    if (!drawing.inFrames)
        return drawing.line("i2c setattributes", {drawing.number(bus), drawing.number(attribute),
                                                  Word::text(hexDigits(value))});
    return Request::ofFrame(std::string{'I', '\xFF', asByte(bus), asByte(attribute)} + value);
}

/// One that the owner alone writes to, or one that nobody writes to.
std::uint32_t drawReadablePort(Drawing& drawing) {
    for (;;) {
        const std::uint32_t port = drawing.dice.below(kPorts);
        const bool isOwn = static_cast<int>(port % Drawing::kParts) == drawing.part;
        if (drawing.isAlone || isOwn || !kPortPlaces[port].isOutput)
            return port;
    }
}

Request drawPortWrite(Drawing& drawing) {
    std::uint32_t port = drawReadablePort(drawing);
    while (port == kTelephoneSwitch)
        port = drawReadablePort(drawing);
    const std::uint32_t level = drawing.dice.below(256);
    if (drawing.dice.oneIn(16))
        port = drawing.dice.oneOf(std::vector<std::uint32_t>{kPorts, kPorts + 1, 255});
    if (drawing.inFrames)
        return Request::ofFrame({'P', kPortCode, 1, asByte(port), asByte(level)});
    const char* written = drawing.dice.oneIn(16) ? "x" : (level & 1) != 0 ? "1" : "0";
    return drawing.line("port write", {drawing.number(port), Word::text(written)});
}

} // namespace

Request drawI2c(Drawing& drawing) {
    const std::uint32_t choice = drawing.dice.below(8);
    if (choice == 0)
        return drawAttribute(drawing);
    return choice < 4 ? drawBusWrite(drawing) : drawBusRead(drawing);
}

Request drawPort(Drawing& drawing) {
    const std::uint32_t choice = drawing.dice.below(8);
    if (choice < 4)
        return drawPortWrite(drawing);
    if (choice == 4 && drawing.isAlone)
        return drawing.inFrames ? Request::ofFrame({'p', kPortCode, 0})
                                : drawing.line("port getattributes", {});
    std::uint32_t port = drawReadablePort(drawing);
    if (drawing.dice.oneIn(12))
        port = drawing.dice.oneOf(std::vector<std::uint32_t>{kPorts, kPorts + 1, 255});
    return drawing.inFrames ? Request::ofFrame({'p', kPortCode, 1, asByte(port)})
                            : drawing.line("port read", {drawing.number(port)});
}
