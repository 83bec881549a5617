#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>

/// Puts a command line together from what single reads returned. No I/O; one thread at a time.
///
/// A line is complete when a read ends exactly on ETX, LF: nothing else delimits commands, so that what
/// follows a complete command within one read belongs to no command.
class LineAssembler {
public:
    /// Takes the bytes of one read. True when they complete the line. Throws std::bad_alloc when the
    /// line would take the memory that the rest of the system needs.
    bool append(const char* bytes, std::size_t count);

    /// What has been received since the last `reset`; valid until the next call.
    std::string_view line() const { return {m_line.get(), m_size}; }
    /// The same, to be written to, and `room` bytes behind it; not null unless both are empty. Throws
    /// std::bad_alloc like `append`.
    char* data(std::size_t room);
    std::size_t capacity() const { return m_capacity; }

    /// Starts the next line; gives the memory of a long one back.
    void reset();

private:
    struct Free {
        void operator()(char* memory) const { std::free(memory); }
    };

    void grow(std::size_t needed);

    // Grown by realloc, which moves the pages of a long line instead of copying them.
    std::unique_ptr<char, Free> m_line;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
