#pragma once

#include <string>

#include "model/Answer.h"
#include "model/Words.h"

/// What one command has to answer, and the state that it keeps from request to request. One thread at a
/// time.
class CommandModel {
public:
    CommandModel() = default;
    CommandModel(const CommandModel&) = delete;
    CommandModel& operator=(const CommandModel&) = delete;
    virtual ~CommandModel() = default;

    virtual Answer answer(const Request& request) = 0;

    /// Whether it can tell the answer, and what the request leaves behind.
    virtual bool knows(const Request&) const { return true; }
};
