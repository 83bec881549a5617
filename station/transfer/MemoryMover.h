#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "transfer/Unit.h"
#include "transfer/Watch.h"

namespace station {

/// How often a part is moved before it counts as unverifiable.
constexpr int kMostAttempts = 4;

/// Moves bytes into the scratch buffer and out of it, slice by slice: each is verified against the
/// unit's checksum, and moved again when that differs. Shows each request as progress. Throws what
/// `Unit` throws, and `Unverified`.
class MemoryMover {
public:
    /// The most bytes to be moved by one call; some hundred full requests.
    static constexpr std::size_t kMostSliceBytes = 256 * kMostRequestBytes;

    MemoryMover(Unit& unit, Watch& watch, Figures& figures)
        : m_unit(unit), m_watch(watch), m_figures(figures) {}

    /// `position` is where the slice lies in the transfer, for the progress.
    void upload(std::uint64_t offset, std::string_view slice, std::uint64_t position);
    std::string download(std::uint64_t offset, std::size_t length, std::uint64_t position);

    /// Whether the buffer holds these bytes: by the unit's checksum, or by reading back what is too
    /// short to have one.
    bool isInBuffer(std::uint64_t offset, std::string_view bytes);

private:
    bool tryUpload(std::uint64_t offset, std::string_view slice, std::uint64_t position);

    Unit& m_unit;
    Watch& m_watch;
    Figures& m_figures;
};

} // namespace station
