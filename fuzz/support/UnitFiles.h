#pragma once

/// The files of a unit, under the paths that commands know them by. The linker puts this between the
/// code and the system's calls: such a path leads into a folder of this process's own, and nothing of
/// the machine is touched. It holds what a simulated unit's does.
namespace UnitFiles {

/// What is not as it should be with them; may be joined.
enum Fault : unsigned {
    Missing = 0x01, ///< some are not there
    Odd = 0x02,     ///< some hold something else
};

/// As they are in a new unit, but for these faults.
void renew(unsigned faults);

} // namespace UnitFiles
