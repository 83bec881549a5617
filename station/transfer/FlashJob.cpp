#include "transfer/FlashJob.h"

#include <algorithm>

#include "transfer/Checksum.h"
#include "transfer/MemoryMover.h"

namespace station {

namespace {

// Where the blocks of one turn lie in the scratch buffer, and where they are read back to: so far away
// that nothing of what was written can be taken for what was read.
constexpr std::uint64_t kBlocksOffset = 0;
constexpr std::uint64_t kReadBackOffset = kBufferSize / 2;

} // namespace

FlashJob::FlashJob(const Order& order)
    : m_source(order.file), m_device(order.device), m_first(order.firstBlock) {}

void FlashJob::run(Unit& unit, Watch& watch, Figures& figures) {
    figures.total = m_source.size();
    BlockDevice device(unit, watch, m_device);
    device.open();
    checkDevice(device, watch);
    watch.progress.begin(figures.total);
    MemoryMover mover(unit, watch, figures);
    Checksum checksum;
    const std::uint64_t turnBytes = device.blocksPerTurn() * m_blockSize;
    while (figures.done < figures.total) {
        const std::uint64_t length = std::min(turnBytes, figures.total - figures.done);
        const std::string bytes = m_source.read(figures.done, static_cast<std::size_t>(length));
        flash(device, unit, mover, figures,
              {figures.done, bytes, m_first + figures.done / m_blockSize,
               (length + m_blockSize - 1) / m_blockSize});
        checksum.add(bytes);
        figures.done += length;
    }
    figures.checksum = checksum.value();
    device.close();
}

/// Everything that can be refused is, before anything is written.
void FlashJob::checkDevice(BlockDevice& device, Watch& watch) {
    device.learnBlockSize(m_first);
    m_blockSize = device.blockSize();
    m_count = (m_source.size() - 1) / m_blockSize + 1;
    device.checkAddressable(m_first, m_count);
    device.checkWritable(m_first);
    const std::uint64_t last = m_first + m_count - 1;
    device.read(last, 1, kBlocksOffset);
    const std::uint64_t filled = m_source.size() % m_blockSize;
    if (filled != 0)
        watch.note("the file ends inside block " + std::to_string(last) + ", after " +
                   std::to_string(filled) + " bytes: the rest of that block keeps its content");
}

void FlashJob::flash(BlockDevice& device, Unit& unit, MemoryMover& mover, Figures& figures,
                     const Turn& turn) {
    for (int attempt = 1;; ++attempt) {
        if (attempt == 1)
            readUnfilled(device, turn);
        if (tryFlash(device, unit, mover, turn))
            return;
        if (attempt == kMostAttempts)
            throw Unverified("the checksum of blocks " + std::to_string(turn.block) + " to " +
                             std::to_string(turn.block + turn.count - 1) +
                             ", read back, still differs after " + std::to_string(kMostAttempts) +
                             " attempts");
        ++figures.retries;
    }
}

bool FlashJob::isFilled(const Turn& turn) const {
    return turn.bytes.size() == turn.count * m_blockSize;
}

/// Brings the content of a block that the file does not fill into the buffer, where the file's bytes
/// then cover its beginning. Once: on the device it may be damaged by a write that failed.
void FlashJob::readUnfilled(BlockDevice& device, const Turn& turn) const {
    if (!isFilled(turn))
        device.read(turn.block + turn.count - 1, 1, kBlocksOffset + (turn.count - 1) * m_blockSize);
}

bool FlashJob::tryFlash(BlockDevice& device, Unit& unit, MemoryMover& mover, const Turn& turn) {
    for (std::size_t at = 0; at < turn.bytes.size(); at += MemoryMover::kMostSliceBytes)
        mover.upload(kBlocksOffset + at, turn.bytes.substr(at, MemoryMover::kMostSliceBytes),
                     turn.position + at);
    m_isWritten = true;
    device.write(turn.block, turn.count, kBlocksOffset);
    device.read(turn.block, turn.count, kReadBackOffset);
    if (!mover.isInBuffer(kReadBackOffset, turn.bytes))
        return false;
    const std::uint64_t lastOffset = (turn.count - 1) * m_blockSize;
    return isFilled(turn) || unit.checksum(kReadBackOffset + lastOffset, m_blockSize) ==
                                 unit.checksum(kBlocksOffset + lastOffset, m_blockSize);
}

std::string FlashJob::leftover(const Figures& figures) const {
    if (!m_isWritten)
        return "nothing was written to the device";
    if (figures.done == figures.total)
        return "all blocks are written and verified";
    const std::uint64_t verified = figures.done / m_blockSize;
    return "the device is incomplete: of blocks " + std::to_string(m_first) + " to " +
           std::to_string(m_first + m_count - 1) + " the first " + std::to_string(verified) +
           " are written and verified, those after them may hold old or new content";
}

} // namespace station
