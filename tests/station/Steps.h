#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace station {

/// One of the things that happen between a station and a unit. Scripts are made of them: `PlayedLink`
/// plays them to what uses a link, `LineScript` at the unit's end of a line, `FakeUnit` at that of a
/// connection.
struct Step {
    enum Kind {
        Arrives, ///< from the unit
        Sent,    ///< by the station; nothing arrives while that is due
        Silence, ///< nothing arrives for once
        HangUp,  ///< the unit ends the connection
        Opened,  ///< by the station: it has set its line up
    };

    Kind kind;
    std::string bytes = {};
};

/// A script: `sent(request) + arrives(answer)`.
using Steps = std::vector<Step>;

inline Steps operator+(Steps first, const Steps& then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

inline Steps arrives(std::string bytes) {
    return {{Step::Arrives, std::move(bytes)}};
}
inline Steps arrivesByteByByte(std::string_view bytes) {
    Steps steps;
    for (const char byte : bytes)
        steps.push_back({Step::Arrives, {byte}});
    return steps;
}
inline Steps sent(std::string_view bytes) {
    return {{Step::Sent, std::string(bytes)}};
}
const Steps kSilence{{Step::Silence}};
const Steps kHangUp{{Step::HangUp}};
const Steps kOpened{{Step::Opened}};

} // namespace station
