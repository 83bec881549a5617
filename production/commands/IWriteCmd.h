#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Writes to slaves of the I2C bus and sets the bus's attributes, over the binary protocol.
class IWriteCmd : public AbstractCmd {
public:
    static IWriteCmd* getInstance();

    /// The ASCII protocol writes through the reading command's name.
    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

private:
    IWriteCmd();

    Answer run(const std::vector<unsigned char>* request);

    Answer setAttribute(const std::vector<unsigned char>& request, int length);
    Answer writeBus(const std::vector<unsigned char>& request, int length);

    static System::Mutex s_singleton_mutex;
};
