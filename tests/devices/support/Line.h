#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/PseudoTerminal.h"
#include "wire/Descriptor.h"

/// A serial line with the test at its far end. What it calls itself is no call of the code under test.
class Line {
public:
    const std::string& path() const { return m_line.path(); }

    /// From the far end.
    void send(std::string_view bytes) const;
    /// From the far end; returns when there are `waiting` bytes to be read from the terminal.
    void send(std::string_view bytes, int waiting) const;
    /// How many bytes there are to be read from the terminal.
    int waiting() const;
    /// At the far end.
    std::string receive(std::size_t count) const;
    /// Whether nothing has come to the far end.
    bool isSilent() const;
    /// The far end goes away for good.
    void hangUp() { m_line.hangUp(); }

    /// Of the terminal.
    termios attributes() const;
    void setAttributes(const termios& attributes) const;

    /// The descriptors of this process that have the terminal open, without the line's own.
    std::vector<int> opened() const;

private:
    PseudoTerminal m_line;
};

bool sameAttributes(const termios& one, const termios& other);
