#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A block medium of the unit that one station has to itself. Its image is looked into directly, to know
/// what the unit must have moved.
class Medium {
public:
    struct Place {
        std::uint32_t type; ///< as requests name it
        std::uint32_t id;
        const char* path;
        bool writable;
    };

    explicit Medium(const Place& place);

    const Place& place() const { return m_place; }
    std::uint32_t blockSize() const { return m_blockSize; }
    std::uint32_t blocks() const { return m_blocks; }

    /// What the image holds now. Throws std::runtime_error.
    std::string content(std::uint32_t firstBlock, std::uint32_t count) const;

    bool isOpen = false; ///< whether the unit has it open, by the requests so far

private:
    Place m_place;
    std::uint32_t m_blockSize;
    std::uint32_t m_blocks;
};
