#pragma once

#include <map>
#include <memory>
#include <string>

#include "model/CommandModel.h"
#include "model/SparseBytes.h"

/// What a whole unit has to answer, from its start on: a copy of its state, kept as the protocol says.
/// One thread at a time.
class Model {
public:
    /// The daemon's stamp, and the link of the station's own line.
    Model(const std::string& buildStamp, int stationLink);

    /// What has to come back, byte by byte; `isAsExpected` compares.
    struct Prediction {
        std::string bytes;
        bool isAnswered; ///< a frame's answer is to be acknowledged
        std::vector<Effect> effects;
    };
    Prediction predict(const Request& request);

    /// Whether it can predict this and what comes after it.
    bool knows(const Request& request) const;

private:
    CommandModel* commandOf(const Request& request) const;
    Answer answerOf(const Request& request, std::string& name);

    int m_stationLink;
    SparseBytes m_scratch;
    std::map<std::string, std::unique_ptr<CommandModel>> m_commands;
};
