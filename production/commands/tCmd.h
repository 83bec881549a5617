#pragma once

#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Reads and writes the scratch buffer. Addresses are byte offsets into it; `width` (1, 2 or 4 bytes)
/// sets their alignment and the unit of `count`, while the bytes always travel in the order of their
/// addresses. At most 244 bytes at a time, and never the buffer's last byte.
///
/// The checksum is the sum of the transferred bytes modulo 256.
class tCmd : public AbstractCmd {
public:
    static tCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Fills `data` with the bytes read; with a checksum, behind the tag and the checksum.
    Answer read(std::vector<unsigned char>* data, unsigned char width, unsigned char count,
                unsigned int address, bool withChecksum, unsigned short tag);
    /// Writes what a request carries. With a checksum, `data` becomes two zero bytes and the checksum; a
    /// wrong one in the request is answered, but the bytes are written all the same.
    Answer write(const std::vector<unsigned char>* request, std::vector<unsigned char>* data,
                 unsigned char width, bool withChecksum, unsigned short tag);
    /// Like `read`, with the checksum alone ahead of the bytes, and with the answer's text.
    Answer readAscii(std::vector<unsigned char>* data, unsigned char width, unsigned char count,
                     unsigned int address, bool withChecksum);
    Answer writeAscii(const std::vector<std::vector<char>>& tokens, std::vector<unsigned char>* data,
                      unsigned char width, bool withChecksum);

private:
    tCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    Answer checkPlace(unsigned int total, unsigned char width, unsigned int address) const;
    Answer readBehind(std::size_t header, std::vector<unsigned char>* data, unsigned char width,
                      unsigned char count, unsigned int address, unsigned char& checksum);
    Answer runBinary(const std::vector<unsigned char>* request, std::vector<unsigned char>* data);

    static System::Mutex s_singleton_mutex;
};
