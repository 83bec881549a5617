#pragma once

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Absorbs acknowledgements that a station sends as requests of their own: answers nothing.
class ackCmd : public AbstractCmd {
public:
    static ackCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override;

private:
    ackCmd();

    static System::Mutex s_singleton_mutex;
};
