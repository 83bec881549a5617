#include "client/StatusPayload.h"

#include <array>
#include <cstdio>

namespace station {

namespace {

// Where the parts of a status stand in the payload.
enum Position : std::size_t {
    kDay,
    kMonth,
    kYear,
    kHour,
    kMinute,
    kProductHigh,
    kProductLow,
    kRevisionHigh,
    kRevisionLow,
    kVersion
};

constexpr std::size_t kLongestText = 64;

} // namespace

std::string statusText(std::string_view payload) {
    const auto at = [payload](Position position) {
        return static_cast<unsigned>(static_cast<unsigned char>(payload[position]));
    };
    const unsigned revision = at(kRevisionHigh) << 8 | at(kRevisionLow);
    std::array<char, kLongestText> text = {};
    // The two digits of each part of the time are the two halves of its byte.
    std::snprintf(text.data(), text.size(), "\"20%02X/%02X/%2X %02X:%02X\" %02X%02X \"%X\" %u",
                  at(kYear), at(kMonth), at(kDay), at(kHour), at(kMinute), at(kProductHigh),
                  at(kProductLow), revision, at(kVersion));
    return text.data();
}

} // namespace station
