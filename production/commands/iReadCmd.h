#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Reads from slaves of the I2C bus, if wanted behind a few bytes written in the same transaction, and
/// reads the bus's attributes; over the ASCII protocol it also writes and sets attributes.
class iReadCmd : public AbstractCmd {
public:
    static iReadCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Reads `count` bytes (1 to 247) into `out`, which has that size. `address` is the slave's, 7 bits.
    Answer readBus(unsigned char bus, unsigned char count, unsigned char address, bool writeFirst,
                   const void* data, unsigned char dataLength, std::vector<unsigned char>* out);
    /// Makes `out` the attribute's value: one byte, or two for the speed in kHz.
    Answer getAttribute(unsigned char bus, unsigned char attribute, std::vector<unsigned char>* out);

private:
    iReadCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    Answer readBusClassic(const std::vector<unsigned char>* request);
    Answer getAttributeClassic(const std::vector<unsigned char>* request);
    Answer readBus(const std::vector<std::vector<char>>& tokens);
    Answer getAttribute(const std::vector<std::vector<char>>& tokens);
    Answer setAttribute(const std::vector<std::vector<char>>& tokens);
    /// Throws std::out_of_range when the token for the data is empty.
    Answer writeBus(const std::vector<std::vector<char>>& tokens);

    static System::Mutex s_singleton_mutex;
};
