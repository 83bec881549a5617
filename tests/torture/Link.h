#pragma once

#include <string>

/// The ways to the daemon. Of the two serial ones a daemon has one, which is chosen at its start.
enum class Link : unsigned {
    Tcp = 1,    ///< lines over TCP
    Frames = 2, ///< binary frames over the station's line
    Lines = 4,  ///< lines of text over the station's line
};

/// "tcp", "frames", "lines".
std::string nameOf(Link link);

/// A request, and all that has to come for it.
struct Spoken {
    std::string sent;
    std::string received;
};

/// A request that no command knows, and whose answer shows its number; of frames every 262,144th is the
/// same. A frame is acknowledged at once, since the unit reads that only when it has answered.
Spoken numbered(Link link, unsigned number);

/// Writes bytes into the scratch buffer, at most 100; `memoryRead` asks for them.
Spoken memoryWrite(Link link, unsigned address, const std::string& bytes);
Spoken memoryRead(Link link, unsigned address, const std::string& bytes);

/// A shell command that writes `output`. A frame takes 250 characters and brings 246.
Spoken shellCommand(Link link, unsigned limitSeconds, const std::string& text,
                    const std::string& output);

/// One that is killed at its limit, having written `output`.
Spoken killedCommand(Link link, unsigned limitSeconds, const std::string& text,
                     const std::string& output);
