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
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    ProcessResponse* writePort(std::vector<unsigned char>* request);

private:
    PWriteCmd();

    static System::Mutex s_singleton_mutex;
};
