#include "transfer/DumpJob.h"

#include <algorithm>

#include "transfer/Checksum.h"
#include "transfer/DownloadJob.h"
#include "transfer/MemoryMover.h"
#include "transfer/PartialFile.h"

namespace station {

namespace {

// Where the blocks of one turn lie in the scratch buffer.
constexpr std::uint64_t kBlocksOffset = 0;

std::string blocksText(std::uint64_t first, std::uint64_t last) {
    if (first == last)
        return "block " + std::to_string(first);
    return "blocks " + std::to_string(first) + " to " + std::to_string(last);
}

} // namespace

DumpJob::DumpJob(const Order& order)
    : m_file(order.file), m_device(order.device), m_blocks(order.blocks) {
    checkDestination(m_file);
}

void DumpJob::run(Unit& unit, Watch& watch, Figures& figures) {
    BlockDevice device(unit, watch, m_device);
    device.open();
    findBlocks(device, watch);
    figures.total = (m_blocks->last - m_blocks->first + 1) * m_blockSize;
    watch.progress.begin(figures.total);
    MemoryMover mover(unit, watch, figures);
    dump(device, mover, figures);
    device.close();
}

/// Makes sure ahead of the first transfer that all blocks are there.
void DumpJob::findBlocks(BlockDevice& device, Watch& watch) {
    device.learnBlockSize(m_blocks ? m_blocks->last : 0);
    m_blockSize = device.blockSize();
    if (m_blocks)
        return device.checkAddressable(m_blocks->first, m_blocks->last - m_blocks->first + 1);
    const std::uint64_t count = device.countBlocks();
    m_blocks = BlockRange{0, count - 1};
    const std::string found =
        "dumping " + blocksText(0, count - 1) + " of " + std::to_string(m_blockSize) + " bytes; ";
    if (count == device.addressableBlocks())
        return watch.note(found + "what the device has from 4 GiB on is out of the unit's reach");
    watch.note(found + "the device's last block, " + std::to_string(count) +
               ", is missing: a unit never transfers it");
}

void DumpJob::dump(BlockDevice& device, MemoryMover& mover, Figures& figures) {
    PartialFile file(m_file);
    Checksum checksum;
    for (std::uint64_t block = m_blocks->first; block <= m_blocks->last;) {
        const std::uint64_t count = std::min(device.blocksPerTurn(), m_blocks->last - block + 1);
        device.read(block, count, kBlocksOffset);
        download(count * m_blockSize, mover, file, checksum, figures);
        block += count;
    }
    figures.checksum = checksum.value();
    file.complete();
    m_isComplete = true;
}

void DumpJob::download(std::uint64_t length, MemoryMover& mover, PartialFile& file, Checksum& checksum,
                       Figures& figures) {
    for (std::uint64_t at = 0; at < length;) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(MemoryMover::kMostSliceBytes, length - at));
        const std::string slice = mover.download(kBlocksOffset + at, count, figures.done);
        file.append(slice);
        checksum.add(slice);
        figures.done += count;
        at += count;
    }
}

std::string DumpJob::leftover(const Figures& figures) const {
    if (m_isComplete)
        return m_file + " is complete";
    if (figures.done == 0)
        return fileLeftover(m_file, figures, {});
    const std::uint64_t whole = figures.done / m_blockSize;
    const std::uint64_t rest = figures.done % m_blockSize;
    std::string content;
    if (whole > 0)
        content = blocksText(m_blocks->first, m_blocks->first + whole - 1);
    if (rest > 0)
        content += (content.empty() ? "" : " and ") + std::to_string(rest) + " bytes of block " +
                   std::to_string(m_blocks->first + whole);
    return fileLeftover(m_file, figures, content + " of " + blocksText(m_blocks->first, m_blocks->last));
}

} // namespace station
