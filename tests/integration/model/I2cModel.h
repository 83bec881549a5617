#pragma once

#include <optional>

#include "model/CommandModel.h"
#include "model/I2cChips.h"

/// The command i2c, and its binary half that writes.
class I2cModel : public CommandModel {
public:
    Answer answer(const Request& request) override;

private:
    Answer answerLine(const Words& words);
    Answer readLine(const Words& words);
    Answer writeLine(const Words& words);
    Answer setAttributeLine(const Words& words);
    Answer answerFrame(const std::string& frame);
    Answer readFrame(const std::string& frame);
    Answer writeFrame(const std::string& frame);
    Answer setAttributeFrame(const std::string& frame);

    /// Successes with the bytes.
    Answer read(std::uint32_t address, std::uint32_t count, const std::optional<std::string>& first);
    Answer write(std::uint32_t address, const std::string& bytes);
    Answer attribute(std::int64_t number) const;
    Answer setStop(std::uint32_t value);
    Answer setClock(std::uint32_t kiloHertz);

    I2cChips m_chips;
    bool m_stops = true;
    std::uint32_t m_kiloHertz = 100;
};
