#include "transfer/BlockDevice.h"

#include <algorithm>

#include "client/Failure.h"
#include "transfer/Checksum.h"

namespace station {

namespace {

constexpr std::uint64_t kTurnBytes = std::uint64_t{1} << 20;
constexpr std::uint64_t kMostBlockBytes = std::uint64_t{1} << 24;
constexpr std::uint64_t kAddressableBytes = std::uint64_t{1} << 32;

// Where a block goes that is read only to learn something.
constexpr std::uint64_t kProbeOffset = 0;

// How the unit says that a device has no such block.
constexpr const char* kBeyondTheEnd[] = {"Startblock does not Exist on Device",
                                         "Endblock does not exist on Device"};

bool isBeyondTheEnd(const Refused& refusal) {
    return std::any_of(std::begin(kBeyondTheEnd), std::end(kBeyondTheEnd), [&](const char* text) {
        return refusal.message().find(text) != std::string::npos;
    });
}

} // namespace

BlockDevice::BlockDevice(Unit& unit, Watch& watch, const DeviceId& device)
    : m_unit(unit), m_watch(watch), m_device(device) {}

BlockDevice::~BlockDevice() {
    if (!m_isOpen)
        return;
    try {
        close();
    } catch (const std::exception& failure) {
        m_watch.note(std::string("the device may still be open in the unit: ") + failure.what());
    }
}

void BlockDevice::open() {
    // Not only once it is answered: what is lost may be the answer.
    m_isOpen = true;
    try {
        m_unit.openDevice(m_device);
    } catch (const Refused&) {
        m_isOpen = false;
        throw;
    } catch (const Failure& failure) {
        // A request that cannot travel was not sent.
        m_isOpen = failure.kind() != Failure::Kind::InvalidRequest;
        throw;
    }
}

void BlockDevice::close() {
    m_isOpen = false;
    m_unit.closeDevice(m_device);
}

void BlockDevice::learnBlockSize(std::uint64_t block) {
    m_blockSize = move(&Unit::readBlocks, block, 1, kProbeOffset);
    if (m_blockSize < Checksum::kFewestBytes || m_blockSize > kMostBlockBytes)
        throw Failure(Failure::Kind::MalformedAnswer,
                      "block " + std::to_string(block) + " of the device has " +
                          std::to_string(m_blockSize) + " bytes, which is no size of a block");
}

std::uint64_t BlockDevice::blocksPerTurn() const {
    return std::max<std::uint64_t>(1, kTurnBytes / m_blockSize);
}

std::uint64_t BlockDevice::addressableBlocks() const {
    return (kAddressableBytes + m_blockSize - 1) / m_blockSize;
}

void BlockDevice::checkAddressable(std::uint64_t first, std::uint64_t count) const {
    const std::uint64_t blocks = addressableBlocks();
    if (first <= blocks && count <= blocks - first)
        return;
    throw Failure(Failure::Kind::InvalidRequest,
                  "blocks " + std::to_string(first) + " to " + std::to_string(first + count - 1) +
                      " are out of reach: the unit addresses the first 4 GiB of a device, blocks 0 to " +
                      std::to_string(blocks - 1));
}

std::uint64_t BlockDevice::countBlocks() {
    std::uint64_t readable = 0;
    std::uint64_t unreadable = addressableBlocks();
    for (std::uint64_t step = 1; readable + step < unreadable; step *= 2) {
        if (canRead(readable + step))
            readable += step;
        else
            unreadable = readable + step;
    }
    while (unreadable - readable > 1) {
        const std::uint64_t middle = readable + (unreadable - readable) / 2;
        (canRead(middle) ? readable : unreadable) = middle;
    }
    return readable + 1;
}

bool BlockDevice::canRead(std::uint64_t block) try {
    return m_unit.readBlocks(m_device, block, 1, kProbeOffset) == m_blockSize;
} catch (const Refused& refusal) {
    if (!isBeyondTheEnd(refusal))
        throw;
    return false;
}

void BlockDevice::read(std::uint64_t first, std::uint64_t count, std::uint64_t offset) {
    moveAll(&Unit::readBlocks, first, count, offset);
}

void BlockDevice::write(std::uint64_t first, std::uint64_t count, std::uint64_t offset) {
    moveAll(&Unit::writeBlocks, first, count, offset);
}

// A write of no blocks: refused like any other, and nothing is changed.
void BlockDevice::checkWritable(std::uint64_t block) {
    move(&Unit::writeBlocks, block, 0, kProbeOffset);
}

std::uint64_t BlockDevice::move(Move move, std::uint64_t first, std::uint64_t count,
                                std::uint64_t offset) try {
    return (m_unit.*move)(m_device, first, count, offset);
} catch (const Refused& refusal) {
    if (!isBeyondTheEnd(refusal))
        throw;
    throw Refused(refusal.code(), refusal.message() + " (a unit never transfers a device's last block)");
}

/// The unit may move fewer blocks than wanted; then the rest follows.
void BlockDevice::moveAll(Move move, std::uint64_t first, std::uint64_t count, std::uint64_t offset) {
    while (count > 0) {
        const std::uint64_t bytes = this->move(move, first, count, offset);
        const std::uint64_t blocks = bytes / m_blockSize;
        if (blocks == 0 || blocks > count || bytes % m_blockSize != 0)
            throw Failure(Failure::Kind::MalformedAnswer,
                          "the unit moved " + std::to_string(bytes) + " bytes of " +
                              std::to_string(count) + " blocks of " + std::to_string(m_blockSize) +
                              " bytes from block " + std::to_string(first) + " on");
        first += blocks;
        count -= blocks;
        offset += bytes;
    }
}

} // namespace station
