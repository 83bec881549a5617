// Requests that chance has made: most are none.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "Ordeal.h"
#include "model/Notation.h"
#include "rows/Devices.h"
#include "rows/Rows.h"
#include "support/BinaryFrames.h"
#include "support/Parallel.h"

namespace {

constexpr char kEtx = '\x03';
constexpr unsigned kStations = 8;

/// Of the commands that there are, or of none; never a command for the shell.
std::string randomFrame(Dice& dice) {
    constexpr std::string_view kIds =
        "\x06"
        "DEGiImpPscSt";
    constexpr std::size_t kShellText = 4;
    const char id = dice.oneIn(8) ? asByte(dice.below(256)) : kIds[dice.below(kIds.size())];
    std::string rest = id + dice.bytes(dice.oneIn(4) ? dice.below(254) : dice.below(24));
    // The first argument is often one that exists.
    if (rest.size() > 1 && dice.oneIn(2))
        rest[1] = asByte(dice.below(10));
    if (id == 'c' && rest.size() > kShellText)
        rest.back() = '\n';
    return framed(rest);
}

/// Bytes that mean something to a line among others; without the end of a line.
std::string randomLine(Dice& dice) {
    constexpr const char* kPieces[] = {
        "\2",     "\3",          "\"",           "hex(",   "base64(",    ")",
        " ",      "#<frame>1A:", "#<parameter>", "read",   "write",      "8bit",
        "0x10",   "-1",          "4294967296",   "cksum",  "\2memory ",  "\2diag ",
        "\2i2c ", "\2port ",     "\2status ",    "\2ack ", "\2graphic ", "\2serial "};
    std::string line = dice.oneIn(2) ? "\x02" : "";
    const std::uint32_t pieces = dice.below(40);
    for (std::uint32_t at = 0; at < pieces; ++at)
        line += dice.oneIn(3) ? dice.bytes(dice.below(20)) : dice.oneOf(kPieces);
    for (std::size_t at = line.find("\x03\n"); at != std::string::npos; at = line.find("\x03\n"))
        line[at] = ' ';
    return line;
}

/// Sends lines by chance; behind each the answer to a marker must come.
void sendRandomLines(const ByteStream& station, Link link, Dice& dice, unsigned first, unsigned count) {
    for (unsigned number = first; number < first + count && !testing::Test::HasFailure(); ++number) {
        station.send(randomLine(dice) + kEtx + "\n");
        // What follows a command in one read is dropped; this has an answer, if an empty one.
        std::string all = link == Link::Tcp ? station.receiveLine() : "";
        const Spoken marker = numbered(link, number);
        station.send(marker.sent);
        while (all.find(marker.received) == std::string::npos) {
            const std::string line = station.receiveLine();
            ASSERT_NE(line, "") << "the connection has ended behind " << testing::PrintToString(all);
            all += line;
        }
    }
}

} // namespace

void randomFrames(Ordeal& ordeal) {
    constexpr unsigned kBatch = 20;
    const unsigned batches = ordeal.times(150, 10'000);
    const unsigned markers = ordeal.bench.markers();
    for (unsigned batch = 0; batch < batches && !testing::Test::HasFailure(); ++batch) {
        std::string sent;
        for (unsigned at = 0; at < kBatch; ++at)
            sent += randomFrame(ordeal.dice).append(kAcknowledgement);
        // Each fiftieth one ends in a frame that says more than it holds.
        if (batch % 50 == 49)
            sent += {'\x20', 't', 1, 2};
        ordeal.station().send(sent);
        // One may have closed the line, and the others behind it are lost then.
        ordeal.amount.bytes += sent.size() + ordeal.bench.resynchronise();
        ordeal.amount.requests += kBatch + 1;
    }
    ordeal.note = std::to_string(ordeal.bench.markers() - markers - batches) + " markers lost";
    closeDevices();
    // Where chance has opened the station's own line, it is as chance wanted it.
    ordeal.bench.replug();
}

void randomLines(Ordeal& ordeal) {
    const unsigned lines = ordeal.times(1'500, 100'000);
    const std::uint64_t seed = ordeal.dice.below(1U << 31);
    runInThreads(kStations, [&](std::size_t number) {
        Dice dice(seed + number);
        const auto first = static_cast<unsigned>(number) * 1'000'000 + 1;
        if (number == 0 && ordeal.link == Link::Lines)
            return sendRandomLines(ordeal.bench.line(), Link::Lines, dice, first, lines);
        const Connection station;
        sendRandomLines(station, Link::Tcp, dice, first, lines);
    });
    ordeal.amount.requests = std::size_t{2} * kStations * lines;
    ordeal.amount.connections = kStations - (ordeal.link == Link::Lines ? 1 : 0);
    closeDevices();
    if (ordeal.link == Link::Lines)
        ordeal.bench.replug();
}
