#pragma once

#include <array>

#include "model/CommandModel.h"

/// One of the unit's lines. Its node holds its level.
struct PortPlace {
    const char* name;
    bool isOutput;
    bool isHighAtFirst;
};

constexpr std::size_t kPorts = 21;
extern const std::array<PortPlace, kPorts> kPortPlaces;

/// What switches the telephone module, whose own line follows some time later.
constexpr std::uint32_t kTelephoneSwitch = 5;

std::string portNode(std::size_t port);

/// The command port, and its binary half that writes.
class PortModel : public CommandModel {
public:
    PortModel();

    Answer answer(const Request& request) override;
    bool knows(const Request& request) const override;

private:
    Answer answerLine(const Words& words);
    Answer writeLine(const Words& words);
    Answer readFrame(const std::string& frame) const;
    Answer writeFrame(const std::string& frame);
    /// Successes with their bytes.
    Answer read(std::uint32_t port) const;
    Answer attributes() const;
    Answer write(std::uint32_t port, bool isHigh);
    std::uint32_t nibble(std::size_t port) const;

    std::array<bool, kPorts> m_levels;
};
