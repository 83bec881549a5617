#pragma once

#include <termios.h>

#include <string>

#include "support/ByteStream.h"

/// A line made of a pseudo-terminal: whoever is tested opens the terminal at `path()`, and this is the
/// far end. Keeps the terminal open itself, too, so that the line stays up while nobody else has it.
class PseudoTerminal : public ByteStream {
public:
    /// As a shell would find it: it edits lines and echoes.
    PseudoTerminal();

    /// "/dev/pts/N"
    const std::string& path() const { return m_path; }

    /// A descriptor of the terminal itself, to look at it or to hand it on.
    int terminal() const { return m_terminal.get(); }

    termios attributes() const;
    void setAttributes(const termios& attributes) const;

    /// The terminal leaves every byte as it is from now on.
    void makeRaw() const;

    /// The far end goes for good: whoever has the terminal open sees it hang up.
    void hangUp() { close(); }

    /// Both ends are gone, but for those who have the terminal open.
    void remove();

private:
    System::Descriptor m_terminal;
    std::string m_path;
};
