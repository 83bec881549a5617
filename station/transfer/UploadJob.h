#pragma once

#include "transfer/Job.h"
#include "transfer/SourceFile.h"

namespace station {

/// A file into the scratch buffer.
class UploadJob : public Job {
public:
    explicit UploadJob(const Order& order);

    void run(Unit& unit, Watch& watch, Figures& figures) override;
    std::string leftover(const Figures& figures) const override;

private:
    SourceFile m_source;
    std::uint64_t m_offset;
};

/// Compares the unit's checksum over a range that was moved in several slices with the local one, so
/// that a change made to an earlier slice meanwhile does not pass. Throws `Unverified`.
void checkWhole(Unit& unit, std::uint64_t offset, const Figures& figures);

} // namespace station
