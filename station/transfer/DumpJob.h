#pragma once

#include "transfer/BlockDevice.h"
#include "transfer/Job.h"

namespace station {

class MemoryMover;
class PartialFile;
class Checksum;

/// Blocks of a block device into a file, through the scratch buffer.
class DumpJob : public Job {
public:
    explicit DumpJob(const Order& order);

    void run(Unit& unit, Watch& watch, Figures& figures) override;
    std::string leftover(const Figures& figures) const override;

private:
    void findBlocks(BlockDevice& device, Watch& watch);
    void dump(BlockDevice& device, MemoryMover& mover, Figures& figures);
    void download(std::uint64_t length, MemoryMover& mover, PartialFile& file, Checksum& checksum,
                  Figures& figures);

    std::string m_file;
    DeviceId m_device;
    std::optional<BlockRange> m_blocks; // known from the command line or once they are found
    std::uint64_t m_blockSize = 0;      // bytes; 0 while it is not known
    bool m_isComplete = false;
};

} // namespace station
