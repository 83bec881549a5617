#pragma once

/// What stands behind a unit's nodes and lines: the seam's calls come here in place of the system. The
/// bus has the chips of a simulated unit, and so has the wireless chip its commands. A serial line has
/// something to say at once when it is opened, and nothing after that. The Bluetooth chip never says
/// anything.
namespace UnitDrivers {

/// What is not as it should be; may be joined.
enum Fault : unsigned {
    BusFails = 0x04,    ///< every third request
    WirelessOdd = 0x08, ///< no Bluetooth; the WLAN chip refuses, answers too much, and fails, in turn
    LinesHangUp = 0x10, ///< when they have said what they have to say
};

/// As in a new unit, but for these faults. Lines that are open lose their other ends.
void renew(unsigned faults);

} // namespace UnitDrivers
