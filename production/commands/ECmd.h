#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Switches the audio driver's test state on and off by signalling its process.
class ECmd : public AbstractCmd {
public:
    static ECmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// 1 activates, 0 deactivates. Blocks the dispatcher while the signalling tool runs.
    ProcessResponse* setState(unsigned char state);

private:
    ECmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);
    Answer switchTo(unsigned char state);

    static System::Mutex s_singleton_mutex;
};
