#pragma once

#include <string>
#include <vector>

#include "model/Dice.h"
#include "model/Request.h"

/// For whom requests are drawn. Each part of the unit's state has an owner: while several links speak at
/// once, each uses its own part and what nobody changes, so that every order of their requests has the
/// same answers. A link that is alone uses every part.
struct Drawing {
    static constexpr int kParts = 4;

    Dice& dice;
    bool inFrames;
    bool isAlone;
    int part;

    /// Decimal, hexadecimal or octal.
    Word number(std::uint32_t value) const;
    /// Hexadecimal, or base64, which may add zeros.
    Word data(const std::string& bytes) const;
    /// One of these, or the number.
    std::uint32_t edgeOr(std::uint32_t number, std::vector<std::uint32_t> edges) const;

    Request line(const std::string& words, std::vector<Word> more) const;
};

/// The part of the scratch buffer that is the owner's.
constexpr std::uint32_t kWindowSize = 64 * 1024;
constexpr std::uint32_t windowOf(int part) {
    return static_cast<std::uint32_t>(part + 1) * 0x100000;
}

Request drawMemory(Drawing& drawing);
Request drawChecksum(Drawing& drawing);
Request drawBlock(Drawing& drawing);
Request drawI2c(Drawing& drawing);
Request drawPort(Drawing& drawing);
Request drawSerial(Drawing& drawing);
Request drawExec(Drawing& drawing);
Request drawStatus(Drawing& drawing);
Request drawAcknowledgement(Drawing& drawing);
Request drawUnknown(Drawing& drawing);

/// Only for a link that is alone: these change what all share.
Request drawAudio(Drawing& drawing);
Request drawGraphic(Drawing& drawing);

/// The request with something wrong, or odd, in it.
Request mangled(Dice& dice, Request request);
