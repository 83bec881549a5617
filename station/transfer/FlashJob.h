#pragma once

#include <optional>
#include <string_view>

#include "transfer/BlockDevice.h"
#include "transfer/Job.h"
#include "transfer/SourceFile.h"

namespace station {

class MemoryMover;

/// A file onto a block device, through the scratch buffer. A last block that the file does not fill
/// keeps the rest of its content. Each part is read back into the buffer and verified there.
class FlashJob : public Job {
public:
    explicit FlashJob(const Order& order);

    void run(Unit& unit, Watch& watch, Figures& figures) override;
    std::string leftover(const Figures& figures) const override;

private:
    /// What is written in one go.
    struct Turn {
        std::uint64_t position; ///< in the file, bytes
        std::string_view bytes;
        std::uint64_t block;
        std::uint64_t count; ///< blocks
    };

    void checkDevice(BlockDevice& device, Watch& watch);
    void flash(BlockDevice& device, Unit& unit, MemoryMover& mover, Figures& figures, const Turn& turn);
    bool isFilled(const Turn& turn) const;
    void readUnfilled(BlockDevice& device, const Turn& turn) const;
    bool tryFlash(BlockDevice& device, Unit& unit, MemoryMover& mover, const Turn& turn);

    SourceFile m_source;
    DeviceId m_device;
    std::uint64_t m_first;
    std::uint64_t m_blockSize = 0; // bytes; 0 while it is not known
    std::uint64_t m_count = 0;     // of the blocks to write
    bool m_isWritten = false;      // something of it
};

} // namespace station
