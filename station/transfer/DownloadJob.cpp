#include "transfer/DownloadJob.h"

#include <algorithm>

#include "client/Failure.h"
#include "transfer/Checksum.h"
#include "transfer/MemoryMover.h"
#include "transfer/PartialFile.h"
#include "transfer/UploadJob.h"

namespace station {

DownloadJob::DownloadJob(const Order& order)
    : m_file(order.file), m_offset(order.offset), m_length(order.length) {
    if (m_length == 0)
        throw Failure(Failure::Kind::InvalidRequest, "a length of 0: there is nothing to transfer");
    checkBufferRange(m_offset, m_length);
    checkDestination(m_file);
}

void DownloadJob::run(Unit& unit, Watch& watch, Figures& figures) {
    figures.total = m_length;
    watch.progress.begin(figures.total);
    PartialFile file(m_file);
    MemoryMover mover(unit, watch, figures);
    Checksum checksum;
    while (figures.done < figures.total) {
        const auto length = static_cast<std::size_t>(
            std::min<std::uint64_t>(MemoryMover::kMostSliceBytes, figures.total - figures.done));
        const std::string slice = mover.download(m_offset + figures.done, length, figures.done);
        file.append(slice);
        checksum.add(slice);
        figures.done += length;
    }
    figures.checksum = checksum.value();
    checkWhole(unit, m_offset, figures);
    file.complete();
}

std::string DownloadJob::leftover(const Figures& figures) const {
    return fileLeftover(m_file, figures,
                        "the bytes from " + std::to_string(m_offset) + " to " +
                            std::to_string(m_offset + figures.done - 1) + " of the scratch buffer");
}

std::string fileLeftover(const std::string& file, const Figures& figures, const std::string& content) {
    std::string unwritten = file + " was not written";
    if (figures.done == 0)
        return unwritten;
    return unwritten + ", " + PartialFile::partName(file) + " is incomplete: it holds " + content;
}

} // namespace station
