#pragma once

#include "model/CommandModel.h"

/// The command status of a unit whose startup status has been sent.
class StatusModel : public CommandModel {
public:
    /// The daemon's own stamp.
    explicit StatusModel(std::string buildStamp) : m_buildStamp(std::move(buildStamp)) {}

    Answer answer(const Request& request) override;

private:
    Answer answerLine(const Words& words) const;
    Answer answerFrame(const std::string& frame) const;

    std::string m_buildStamp;
};
