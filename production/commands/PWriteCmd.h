#pragma once

#include <vector>

#include "commands/AbstractPCmd.h"
#include "runtime/Mutex.h"

/// Writes a port over the binary protocol.
class PWriteCmd : public AbstractPCmd {
public:
    static PWriteCmd* getInstance();

    /// The ASCII protocol writes through the reading command's name.
    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    Answer writePort(const std::vector<unsigned char>* request);

private:
    PWriteCmd();

    Answer run(const std::vector<unsigned char>* request);

    static System::Mutex s_singleton_mutex;
};
