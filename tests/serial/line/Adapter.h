#pragma once

#include "support/PseudoTerminal.h"
#include "support/UnitFiles.h"
#include "wire/Descriptor.h"

/// The adapter that connects the unit to its test station, in the hands of the test: a raw line behind
/// the node that the daemon opens, which can be pulled and plugged in again.
class Adapter : public PseudoTerminal {
public:
    static constexpr const char* kNode = kStationLine;

    /// Plugged in, in place of the unit's own line. Make it before the daemon.
    Adapter() { place(); }
    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;
    ~Adapter() { pull(); }

    /// The node goes and whoever has the line open sees it hang up.
    void pull();
    /// A new line appears behind the node.
    void plug();

    /// Returns when the daemon has taken everything that was sent out of the line.
    void waitUntilTaken() const;

private:
    void place() const;
};
