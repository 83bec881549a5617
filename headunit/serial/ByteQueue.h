#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace headunit {

/// Bytes on their way to a reader, first in, first out,
/// never more than a fixed number of them. Not synchronised.
class ByteQueue {
public:
    /// `capacity` in bytes.
    explicit ByteQueue(std::size_t capacity) : m_capacity(capacity) {}

    bool empty() const { return waiting().empty(); }

    /// How many more bytes it takes.
    std::size_t room() const { return m_capacity - waiting().size(); }

    /// Takes all of the bytes, or none and returns false when there is not enough room.
    bool push(std::string_view bytes);

    /// Everything that waits; valid until the next change.
    std::string_view waiting() const { return std::string_view(m_bytes).substr(m_gone); }

    /// Forgets the first `count` waiting bytes, of which there must be so many.
    void drop(std::size_t count);

    void clear();

private:
    std::size_t m_capacity;
    std::string m_bytes;
    std::size_t m_gone = 0; ///< bytes at the front of m_bytes that were dropped
};

} // namespace headunit
