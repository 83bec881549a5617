#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Switches the audio driver's test state on and off by signalling its process.
class ECmd : public AbstractCmd {
public:
    static ECmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    /// 1 activates, 0 deactivates. Blocks the dispatcher while the signalling tool runs.
    ProcessResponse* setState(unsigned char state);

private:
    ECmd();

    static System::Mutex s_singleton_mutex;
};
