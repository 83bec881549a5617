#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Checksums a range of the scratch buffer, so that a station can verify a transfer without reading the
/// data back.
class DCmd : public AbstractCmd {
public:
    static DCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Puts the checksum into the four bytes of `result`, most significant first. `memType` 0 is the
    /// scratch buffer; `offset` and `length` in bytes.
    ProcessResponse* processData(unsigned char memType, unsigned int offset, unsigned int length,
                                 std::vector<unsigned char>& result);

private:
    DCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);
    Answer checksum(unsigned char memType, unsigned int offset, unsigned int length,
                    std::vector<unsigned char>& result);

    static System::Mutex s_singleton_mutex;
};
