#pragma once

#include <string>

#include "client/Failure.h"

namespace station {

/// What to do about a request that has no binary form.
constexpr char kUseAscii[] =
    "use the ASCII form: --target tcp:HOST:PORT, or --protocol ascii on a line where the unit speaks it";

[[noreturn]] inline void refuseForm(const std::string& message) {
    throw Failure(Failure::Kind::InvalidRequest, message);
}

} // namespace station
