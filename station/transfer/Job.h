#pragma once

#include <memory>
#include <string>

#include "transfer/Order.h"
#include "transfer/Unit.h"
#include "transfer/Watch.h"

namespace station {

/// One transfer from its beginning to its end. One thread.
class Job {
public:
    virtual ~Job() = default;

    /// Moves everything and verifies it; blocks until then. `figures` always says how far it is. Throws
    /// what `MemoryMover` throws, and std::exception for what the local system refuses; then `leftover`
    /// says what is half done.
    virtual void run(Unit& unit, Watch& watch, Figures& figures) = 0;

    /// What is in the unit or in the file after a failure, for a person.
    virtual std::string leftover(const Figures& figures) const = 0;
};

/// Checks all that can be known without the unit: sizes,
/// offsets, the local file. Throws `Failure` (`InvalidRequest`).
std::unique_ptr<Job> makeJob(const Order& order);

/// Throws `Failure` (`InvalidRequest`) for a range that does not end below the buffer's last byte.
void checkBufferRange(std::uint64_t offset, std::uint64_t length);

} // namespace station
