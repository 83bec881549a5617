#pragma once

#include <vector>

#include "commands/AbstractPCmd.h"
#include "runtime/Mutex.h"

/// Reads one port or the attributes of all; over the ASCII protocol it also writes one.
///
/// Attribute nibble: bits 0 and 1 the port's type, bit 2 its level, bit 3 zero.
class pReadCmd : public AbstractPCmd {
public:
    static pReadCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Stores '0' or '1' in `value` and returns 0, or returns an error number: an errno, or 1026 for a
    /// port that is not implemented. The port must be in the table.
    unsigned int readPortValue(unsigned char port, char& value);

    /// Appends the port's number and its nibble.
    Answer readPort(unsigned char port, std::vector<unsigned char>* data);

    /// The number of ports in two bytes, then two nibbles a byte, the lower one first.
    Answer getConfig(std::vector<unsigned char>* data);

    Answer writePort(const std::vector<std::vector<char>>& tokens);

    /// Puts the nibble into `byte`: as its lower half,
    /// with the upper one cleared, or into its upper half.
    void setAttributes(unsigned char& byte, PortInfo::Type type, char value, bool low);

private:
    pReadCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    Answer runBinary(const std::vector<unsigned char>* request, std::vector<unsigned char>* data);

    static System::Mutex s_singleton_mutex;
};
