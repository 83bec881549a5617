#pragma once

#include <cstddef>
#include <string>

#include "wire/Descriptor.h"

namespace headunit {

/// A pair of connected terminal ends: the far one has a path that other programs open, the near one is
/// this object's. The pair starts raw: all 256 byte values pass unchanged both ways and nothing is
/// echoed, until a program configures its end otherwise. Programs may open and close the far end as they
/// like; when this object goes, those that hold it see a hang-up. Not synchronised.
class PseudoTerminal {
public:
    /// Throws UnitError when the machine has no pseudo-terminal to give.
    PseudoTerminal();

    /// The near end, non-blocking.
    int descriptor() const { return m_near.get(); }

    /// Where other programs find the far end: "/dev/pts/7".
    const std::string& path() const { return m_path; }

    /// How many bytes lie at the far end that nobody has read, as far as its input buffer goes.
    std::size_t unread() const;

    /// Discards everything that programs wrote to the far end and that was not read from the near one.
    void discardWritten();

    /// Makes the far end usable again after the kernel hung it up, which it does when a program ends
    /// that had it as its controlling terminal. Throws UnitError.
    void revive();

private:
    System::Descriptor m_near;
    System::Descriptor m_far; ///< held so that the pair outlives programs that close the far end
    std::string m_path;
};

} // namespace headunit
