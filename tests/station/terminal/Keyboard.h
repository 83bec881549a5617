#pragma once

#include "support/PseudoTerminal.h"
#include "wire/Descriptor.h"

namespace station {

/// A terminal as a shell sets it up, and the person at it.
class Keyboard : public PseudoTerminal {
public:
    /// Whether the terminal edits lines and echoes keys, as it does for a shell.
    bool isCooked() const;

    /// Fails the test when that does not happen.
    void waitUntilRaw() const;
};

} // namespace station
