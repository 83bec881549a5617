#pragma once

#include <termios.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"

/// A serial line with the test at its far end: a pseudo-terminal whose path the code under test opens.
/// The test keeps the terminal open too, so that it can look at it. Each wait has a deadline. One thread
/// at a time may send and one may receive. What cannot go on throws std::runtime_error.
class Line {
public:
    Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    const std::string& path() const { return m_path; }

    /// From the far end.
    void send(std::string_view bytes);
    /// From the far end; returns when there are `waiting` bytes to be read from the terminal.
    void send(std::string_view bytes, int waiting);
    /// How many bytes there are to be read from the terminal.
    int waiting() const;
    /// At the far end: exactly so many bytes, fewer when the deadline passes.
    std::string receive(std::size_t count);
    /// Whether nothing has come to the far end.
    bool isSilent() const;
    /// The far end goes away for good.
    void hangUp() { m_far.reset(); }

    /// Of the terminal.
    termios attributes() const;
    void setAttributes(const termios& attributes);

    /// The descriptors of this process that have the terminal open, without the line's own.
    std::vector<int> opened() const;

private:
    System::Descriptor m_far;
    System::Descriptor m_terminal;
    std::string m_path;
};

bool sameAttributes(const termios& one, const termios& other);
