// A request cut at each byte, with each kind of argument.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "Ordeal.h"
#include "model/Notation.h"
#include "rows/Rows.h"

namespace {

constexpr unsigned kAddress = 0x40;
constexpr std::size_t kCount = 6;
// What the unit waits for the rest of a frame, with some room.
constexpr std::chrono::milliseconds kGap{400};

/// Six characters that are another argument each time.
std::string contentOf(unsigned number) {
    std::string digits = std::to_string(number);
    return std::string(kCount - digits.size(), '0') + digits;
}

/// Each way to write these bytes on a line.
std::vector<std::string> argumentsFor(const std::string& bytes) {
    return {bytes, "\"" + bytes + "\"", hexText(bytes), base64Text(bytes)};
}

std::vector<Spoken> writesOf(Link link, unsigned number) {
    const std::string bytes = contentOf(number);
    if (link == Link::Frames)
        return {memoryWrite(link, kAddress, bytes)};
    std::vector<Spoken> writes;
    for (const std::string& argument : argumentsFor(bytes))
        for (const char* notation : {" 6 64 ", " 0x6 0x40 ", " 06 0100 "})
            writes.push_back(
                {request("memory write 8bit" + (notation + argument)), answer("memory ok")});
    return writes;
}

void waitUntilTaken(Ordeal& ordeal) {
    if (ordeal.link == Link::Tcp)
        static_cast<const Connection&>(ordeal.station()).waitUntilTaken();
    else
        ordeal.bench.line().waitUntilTaken();
}

/// Sends the request in pieces. False when the machine took so long between two of them that the unit
/// may have ended the frame.
bool sendInPieces(Ordeal& ordeal, const std::string& sent, const std::vector<std::size_t>& cuts) {
    using Clock = std::chrono::steady_clock;
    bool isInTime = true;
    std::size_t begin = 0;
    for (const std::size_t cut : cuts) {
        const auto start = Clock::now();
        ordeal.station().send(sent.substr(begin, cut - begin));
        waitUntilTaken(ordeal);
        isInTime = isInTime && Clock::now() - start < kGap;
        begin = cut;
    }
    ordeal.station().send(sent.substr(begin));
    return isInTime || ordeal.link != Link::Frames;
}

void writeInPieces(Ordeal& ordeal, const Spoken& write, const std::string& bytes,
                   const std::vector<std::size_t>& cuts) {
    while (!sendInPieces(ordeal, write.sent, cuts))
        ordeal.bench.resynchronise();
    ordeal.expect({"", write.received});
    ordeal.expect(memoryRead(ordeal.link, kAddress, bytes));
}

} // namespace

void splits(Ordeal& ordeal) {
    const std::size_t secondCuts = ordeal.times(1, 8);
    const std::size_t forms = writesOf(ordeal.link, 0).size();
    unsigned number = 0;
    for (std::size_t form = 0; form < forms; ++form) {
        const std::size_t length = writesOf(ordeal.link, 0)[form].sent.size();
        for (std::size_t cut = 1; cut < length; ++cut) {
            for (std::size_t second = 0; second < secondCuts && !testing::Test::HasFailure(); ++second) {
                const Spoken write = writesOf(ordeal.link, ++number)[form];
                std::vector<std::size_t> cuts = {cut};
                if (second != 0 && cut + 1 < length)
                    cuts.push_back(ordeal.dice.between(static_cast<unsigned>(cut + 1),
                                                       static_cast<unsigned>(length - 1)));
                writeInPieces(ordeal, write, contentOf(number), cuts);
            }
        }
    }
}
