#include "transfer/UploadJob.h"

#include <algorithm>

#include "transfer/Checksum.h"
#include "transfer/MemoryMover.h"

namespace station {

UploadJob::UploadJob(const Order& order) : m_source(order.file), m_offset(order.offset) {
    checkBufferRange(m_offset, m_source.size());
}

void UploadJob::run(Unit& unit, Watch& watch, Figures& figures) {
    figures.total = m_source.size();
    watch.progress.begin(figures.total);
    MemoryMover mover(unit, watch, figures);
    Checksum checksum;
    while (figures.done < figures.total) {
        const auto length = static_cast<std::size_t>(
            std::min<std::uint64_t>(MemoryMover::kMostSliceBytes, figures.total - figures.done));
        const std::string slice = m_source.read(figures.done, length);
        mover.upload(m_offset + figures.done, slice, figures.done);
        checksum.add(slice);
        figures.done += length;
    }
    figures.checksum = checksum.value();
    checkWhole(unit, m_offset, figures);
}

std::string UploadJob::leftover(const Figures& figures) const {
    return "the scratch buffer of the unit is incomplete: of the bytes from " +
           std::to_string(m_offset) + " to " + std::to_string(m_offset + m_source.size() - 1) +
           " the first " + std::to_string(figures.done) + " are verified";
}

void checkWhole(Unit& unit, std::uint64_t offset, const Figures& figures) {
    const bool isOneSlice = figures.total <= MemoryMover::kMostSliceBytes;
    if (isOneSlice || unit.checksum(offset, figures.total) == figures.checksum)
        return;
    throw Unverified("the checksum of all " + std::to_string(figures.total) +
                     " bytes differs although each part had its own: the scratch buffer was changed "
                     "during the transfer");
}

} // namespace station
