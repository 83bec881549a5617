#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

/// Many bytes, all zero at first, of which only those that were written take memory.
class SparseBytes {
public:
    explicit SparseBytes(std::uint64_t size) : m_size(size) {}

    std::uint64_t size() const { return m_size; }

    /// The place must lie within the size.
    std::string read(std::uint64_t address, std::size_t count) const;
    void write(std::uint64_t address, std::string_view bytes);

private:
    static constexpr std::size_t kPage = 4096;

    std::uint64_t m_size;
    std::map<std::uint64_t, std::string> m_pages; // by their number
};

/// The unit's checksum over some bytes, at least four,
/// calculated one byte after the other; in four bytes.
std::string checksumOf(std::string_view bytes);
