#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

/// Bytes on their way to a device that has not taken them yet, in the order in which they were written.
/// Not synchronised.
class OutputQueue {
public:
    bool isEmpty() const { return m_pieces.empty(); }
    /// In bytes.
    std::size_t size() const { return static_cast<std::size_t>(m_appended - m_taken); }

    /// Kept as it is, without a copy. Nothing is changed when it throws std::bad_alloc.
    void append(std::string bytes);

    /// What comes next; empty when there is nothing.
    std::string_view next() const;
    /// So many bytes of `next` have been taken.
    void take(std::size_t count);

    /// All bytes count as taken.
    void clear();

    /// How many bytes have ever come and gone, so that one can tell when one's own are through.
    std::uint64_t appended() const { return m_appended; }
    std::uint64_t taken() const { return m_taken; }

private:
    std::deque<std::string> m_pieces; // none is empty
    std::size_t m_at = 0;             // in the first piece
    std::uint64_t m_appended = 0;
    std::uint64_t m_taken = 0;
};
