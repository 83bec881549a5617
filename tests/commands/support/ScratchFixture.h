#pragma once

#include <string>

#include "support/UnitFixture.h"

constexpr unsigned int kScratchBytes = 0x8000000;

/// Commands on the scratch buffer, called directly or through the Handler as a front end would. A case
/// finds no two neighbouring bytes alike at the buffer's beginning and its end.
class ScratchFixture : public ::testing::Test {
protected:
    /// How many bytes at either end are prepared.
    static constexpr unsigned int kPrepared = 1024;

    ScratchFixture();

    static void store(unsigned int address, const Bytes& bytes);
    static Bytes stored(unsigned int address, std::size_t count);
    /// The prepared bytes, to see that nothing has changed them.
    static Bytes allStored();
};

/// A frame of the memory command, with everything that follows the address.
Bytes access(unsigned char code, unsigned char count, unsigned int address, const Bytes& rest = {});
/// What the front ends make of "hex(...)": no terminating zero.
std::vector<char> dataToken(const Bytes& bytes);

/// While true, there is no memory for the scratch buffer.
void refuseScratchMemory(bool refused);
