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

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    /// Fills `data` with the bytes read; with a checksum, behind the tag and the checksum.
    ProcessResponse* read(std::vector<unsigned char>* data, unsigned char width, unsigned char count,
                          unsigned int address, bool withChecksum, unsigned short tag);
    /// Writes what a request carries. With a checksum, `data` becomes two zero bytes and the checksum; a
    /// wrong one in the request is answered, but the bytes are written all the same.
    ProcessResponse* write(std::vector<unsigned char>* request, std::vector<unsigned char>* data,
                           unsigned char width, bool withChecksum, unsigned short tag);
    /// Like `read`, with the checksum alone ahead of the bytes, and with the answer's text.
    ProcessResponse* readAscii(std::vector<unsigned char>* data, unsigned char width,
                               unsigned char count, unsigned int address, bool withChecksum);
    ProcessResponse* writeAscii(std::vector<std::vector<char>>& tokens, std::vector<unsigned char>* data,
                                unsigned char width, bool withChecksum);

private:
    tCmd();

    ProcessResponse* checkPlace(unsigned int total, unsigned char width, unsigned int address) const;
    ProcessResponse* readBehind(std::size_t header, std::vector<unsigned char>* data,
                                unsigned char width, unsigned char count, unsigned int address,
                                unsigned char& checksum);
    ProcessResponse* runBinary(std::vector<unsigned char>* request, std::vector<unsigned char>* data);

    static System::Mutex s_singleton_mutex;
};
