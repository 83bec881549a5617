#pragma once

#include <cstdint>

#include "transfer/Unit.h"
#include "transfer/Watch.h"

namespace station {

/// A block device of the unit, which is closed again with this object at the latest. Throws what `Unit`
/// throws; refusals about the end of the device say that its last block is out of reach.
class BlockDevice {
public:
    BlockDevice(Unit& unit, Watch& watch, const DeviceId& device);
    /// Closes it, also after an interruption; notes when that cannot be done.
    ~BlockDevice();
    BlockDevice(const BlockDevice&) = delete;
    BlockDevice& operator=(const BlockDevice&) = delete;

    /// Before anything else. That it is open already is fine.
    void open();
    void close();

    /// Reads one block, which must be there, for how large the device's blocks are; the calls below need
    /// to know.
    void learnBlockSize(std::uint64_t block);
    std::uint64_t blockSize() const { return m_blockSize; } ///< bytes

    /// As many blocks as are moved in one go: what a cut link loses at most. At least one.
    std::uint64_t blocksPerTurn() const;

    /// How many blocks can be addressed: positions on the device have 32 bits, and wrap beyond that.
    std::uint64_t addressableBlocks() const;

    /// Throws `Failure` (`InvalidRequest`) when some of these blocks cannot be addressed.
    void checkAddressable(std::uint64_t first, std::uint64_t count) const;

    /// How many blocks can be read, from 0 on, found by trying.
    std::uint64_t countBlocks();

    /// Between the device and the buffer, all of these blocks.
    void read(std::uint64_t first, std::uint64_t count, std::uint64_t offset);
    void write(std::uint64_t first, std::uint64_t count, std::uint64_t offset);

    /// Throws `Refused` when the device takes no blocks at all.
    void checkWritable(std::uint64_t block);

private:
    using Move = std::uint64_t (Unit::*)(const DeviceId&, std::uint64_t first, std::uint64_t count,
                                         std::uint64_t offset);

    bool canRead(std::uint64_t block);
    std::uint64_t move(Move move, std::uint64_t first, std::uint64_t count, std::uint64_t offset);
    void moveAll(Move move, std::uint64_t first, std::uint64_t count, std::uint64_t offset);

    Unit& m_unit;
    Watch& m_watch;
    DeviceId m_device;
    std::uint64_t m_blockSize = 0;
    bool m_isOpen = false;
};

} // namespace station
