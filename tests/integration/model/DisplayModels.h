#pragma once

#include <map>

#include "model/CommandModel.h"

/// The command audio, with a driver that runs.
class AudioModel : public CommandModel {
public:
    Answer answer(const Request& request) override;

private:
    static Answer setState(std::uint32_t state);
};

/// The command graphic, on a unit that has all outputs.
class GraphicModel : public CommandModel {
public:
    Answer answer(const Request& request) override;

private:
    Answer display(std::uint32_t output, std::uint32_t picture);
    Answer capture(std::uint32_t input, std::uint32_t output);
    /// A success that shows on the displays.
    Answer shown() const;

    bool m_viewerRuns = false;
    std::map<int, std::string> m_pictures = {}; // by the display
    std::string m_videoOfFirst = "black";       // where no picture is
};
