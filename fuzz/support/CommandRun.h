#pragma once

#include <string>
#include <vector>

/// Requests, run as the front ends have them run, in a unit that is played. What comes of each is held
/// against what every command keeps to; a process in which one does not ends.
namespace CommandRun {

using Frame = std::vector<unsigned char>;

/// May be joined with the faults: the station asks over the network and not over its own serial line.
constexpr unsigned kOverNetwork = 0x80;

/// What a station finds is that of a new unit with these faults, joined from those of UnitFiles,
/// UnitDrivers and UnitTools.
void renew(unsigned faults);

struct Outcome {
    std::string answer;     ///< the frame, or the line's text; empty for none
    std::string transcript; ///< all that the request has led to, for comparisons
};

/// A request of the binary protocol.
Outcome run(const Frame& request);

/// What stands between the framing of an ASCII request. A line without a command is none.
Outcome run(const std::string& line);

} // namespace CommandRun
