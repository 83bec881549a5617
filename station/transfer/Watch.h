#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "transfer/Progress.h"

namespace station {

/// Who is told how a transfer goes, while it goes.
struct Watch {
    Progress& progress;
    /// What the caller has to know about the result.
    std::function<void(const std::string& note)> note;
};

/// What can be said of a transfer at any moment, also when it fails.
struct Figures {
    std::uint64_t total = 0;                              ///< bytes; 0 while it is not known
    std::uint64_t done = 0;                               ///< bytes that are verified
    std::uint64_t retries = 0;                            ///< parts that were moved again
    std::optional<std::uint32_t> checksum = std::nullopt; ///< of all bytes, in the end
};

/// What was moved does not have its checksum, again and again.
class Unverified : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace station
