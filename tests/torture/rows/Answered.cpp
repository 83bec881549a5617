#include "rows/Answered.h"

#include <gtest/gtest.h>

#include <string>

namespace {

bool isInfo(const std::string& line) {
    return line.rfind("\x02#Info \"", 0) == 0;
}

/// One answer with all that goes ahead of it.
std::string linesFor(const ByteStream& station) {
    std::string all;
    for (std::string line = station.receiveLine(); !line.empty(); line = station.receiveLine()) {
        all += line;
        if (!isInfo(line))
            break;
    }
    return all;
}

std::string framesFor(const ByteStream& station) {
    std::string all;
    for (std::string frame = station.receiveFrame(); !frame.empty(); frame = station.receiveFrame()) {
        all += frame;
        if (frame.size() < 2 || frame[1] != 'd')
            break;
    }
    return all;
}

bool isRefusedLine(const std::string& received) {
    return isInfo(received) && received.find(" Error 0x") != std::string::npos;
}

/// A debug frame, and an answer without content whose code is an error's.
bool isRefusedFrame(const std::string& received) {
    constexpr std::size_t kAnswer = 8;
    return received.size() > kAnswer && received[1] == 'd' &&
           received[received.size() - kAnswer] == static_cast<char>(kAnswer) &&
           received.substr(received.size() - 4) != std::string(4, '\0');
}

} // namespace

Reaction reactionTo(const ByteStream& station, Link link, const Spoken& asked) {
    if (!station.trySend(asked.sent))
        return Reaction::Ended;
    const std::string received = link == Link::Frames ? framesFor(station) : linesFor(station);
    if (received == asked.received)
        return Reaction::Answered;
    if (link == Link::Frames ? isRefusedFrame(received) : isRefusedLine(received))
        return Reaction::Refused;
    const bool isBegun = asked.received.rfind(received, 0) == 0 || isInfo(received);
    EXPECT_TRUE(isBegun) << "sent " << testing::PrintToString(asked.sent) << "\nreceived "
                         << testing::PrintToString(received);
    return Reaction::Ended;
}
