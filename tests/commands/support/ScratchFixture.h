#pragma once

#include <string>

#include "support/RunningHandler.h"
#include "support/UnitFixture.h"

constexpr unsigned int kScratchBytes = 0x8000000;

/// Commands on the scratch buffer, called directly or through the Handler as a front end would. A case
/// finds no two neighbouring bytes alike at the buffer's beginning and its end.
class ScratchFixture : public RunningHandler {
protected:
    /// How many bytes at either end are prepared.
    static constexpr unsigned int kPrepared = 1024;

    ScratchFixture();

    using RunningHandler::send;
    std::string send(const Tokens& list) { return handler().handleCommand(list, &m_listener); }

    static void store(unsigned int address, const Bytes& bytes);
    static Bytes stored(unsigned int address, std::size_t count);
    /// The prepared bytes, to see that nothing has changed them.
    static Bytes allStored();

    /// That a request of at least four bytes is answered by the text and then by the code's frame.
    void expectErrorFrames(const Bytes& request, unsigned int code, const std::string& text);
    /// That a line is answered by the text and then by `line`.
    void expectErrorLines(const Tokens& list, const std::string& line, const std::string& text);
};

/// A number as requests carry it.
Bytes bigEndian(unsigned int number);
/// One behind the other.
Bytes joined(Bytes first, const Bytes& second);
/// What the front ends make of "hex(...)": no terminating zero.
std::vector<char> dataToken(const Bytes& bytes);

/// While true, there is no memory for the scratch buffer.
void refuseScratchMemory(bool refused);
