// Where a station is told to find a unit, and how long to wait: what is taken is written as it was read.

#include <cmath>
#include <string>
#include <string_view>
#include <variant>

#include "Expect.h"
#include "client/Deadline.h"
#include "client/Failure.h"
#include "client/Target.h"

namespace {

using station::Failure;

template <typename Reading>
void read(const Reading& reading) {
    try {
        reading();
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::InvalidRequest,
               "What cannot be used is refused as such");
    }
}

std::string written(const station::Target& target) {
    return std::visit([](const auto& kind) { return kind.text(); }, target);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    read([text] {
        const station::Target target = station::parseTarget(text);
        expectSame(written(target), written(station::parseTarget(written(target))),
                   "a target that was written");
        if (const auto* serial = std::get_if<station::SerialTarget>(&target))
            expectSame(text, serial->text(), "a line's target");
        if (const auto* tcp = std::get_if<station::TcpTarget>(&target))
            expect(tcp->port != 0 && !tcp->host.empty(), "A unit's port has a host and a number");
    });
    read([text] {
        const double seconds = station::parseTimeout(text).count();
        expect(seconds > 0 && std::isfinite(seconds), "A time-out is more than nothing, and ends");
    });
    return 0;
}
