#include "transfer/MemoryMover.h"

#include <algorithm>

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
    for (int attempt = 1;; ++attempt) {
        std::string slice = tryDownload(offset, length, position);
        if (slice.size() == length && isInBuffer(offset, slice))
            return slice;
        if (attempt == kMostAttempts)
            failUnverified(offset, length);
        ++m_figures.retries;
    }
}

bool MemoryMover::tryUpload(std::uint64_t offset, std::string_view slice, std::uint64_t position) {
    for (std::size_t at = 0; at < slice.size(); at += kMostRequestBytes) {
        const std::string_view bytes = slice.substr(at, kMostRequestBytes);
        if (!m_unit.writeMemory(offset + at, bytes))
            return false;
        m_watch.progress.at(position + at + bytes.size());
    }
    return isInBuffer(offset, slice);
}

/// Shorter than wanted when a part arrived damaged.
std::string MemoryMover::tryDownload(std::uint64_t offset, std::size_t length, std::uint64_t position) {
    std::string slice;
    slice.reserve(length);
    while (slice.size() < length) {
        const std::size_t count = std::min(kMostRequestBytes, length - slice.size());
        const auto bytes = m_unit.readMemory(offset + slice.size(), count);
        if (!bytes)
            break;
        slice += *bytes;
        m_watch.progress.at(position + slice.size());
    }
    return slice;
}

bool MemoryMover::isInBuffer(std::uint64_t offset, std::string_view bytes) {
    const auto expected = checksumOf(bytes);
    if (!expected)
        return m_unit.readMemory(offset, bytes.size()) == std::string(bytes);
    return m_unit.checksum(offset, bytes.size()) == *expected;
}

} // namespace station
