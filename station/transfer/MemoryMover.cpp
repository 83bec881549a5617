#include "transfer/MemoryMover.h"

#include "transfer/Checksum.h"

namespace station {

namespace {

[[noreturn]] void failUnverified(std::uint64_t offset, std::size_t length) {
    throw Unverified("the checksum of bytes " + std::to_string(offset) + " to " +
                     std::to_string(offset + length - 1) +
                     " of the unit's scratch buffer still differs after " +
                     std::to_string(kMostAttempts) + " attempts");
}

} // namespace

void MemoryMover::upload(std::uint64_t offset, std::string_view slice, std::uint64_t position) {
    for (int attempt = 1;; ++attempt) {
        if (tryUpload(offset, slice, position))
            return;
        if (attempt == kMostAttempts)
            failUnverified(offset, slice.size());
        ++m_figures.retries;
    }
}

std::string MemoryMover::download(std::uint64_t offset, std::size_t length, std::uint64_t position) {
    const auto show = [&](std::size_t count) { m_watch.progress.at(position + count); };
    for (int attempt = 1;; ++attempt) {
        auto slice = m_unit.readMemory(offset, length, show);
        if (slice && isInBuffer(offset, *slice))
            return *std::move(slice);
        if (attempt == kMostAttempts)
            failUnverified(offset, length);
        ++m_figures.retries;
    }
}

bool MemoryMover::tryUpload(std::uint64_t offset, std::string_view slice, std::uint64_t position) {
    const auto show = [&](std::size_t count) { m_watch.progress.at(position + count); };
    return m_unit.writeMemory(offset, slice, show) && isInBuffer(offset, slice);
}

bool MemoryMover::isInBuffer(std::uint64_t offset, std::string_view bytes) {
    const auto expected = checksumOf(bytes);
    if (!expected)
        return m_unit.readMemory(offset, bytes.size(), [](std::size_t) {}) == std::string(bytes);
    return m_unit.checksum(offset, bytes.size()) == *expected;
}

} // namespace station
