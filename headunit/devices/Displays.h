#pragma once

#include <string>

#include "displays/DisplayFiles.h"
#include "unit/UnitTree.h"

namespace headunit {

/// The unit's displays, seen from outside: their state is a file that the tools inside the unit change.
/// Installed and destroyed while nothing of the unit runs. The tree outlives it.
class Displays {
public:
    Displays() = default;
    Displays(const Displays&) = delete;
    Displays& operator=(const Displays&) = delete;

    /// Removes the state; what the displays showed last stays to be looked at.
    ~Displays();

    /// Claims the names of the files and removes what an earlier run left there. Throws UnitError.
    void install(UnitTree& tree);

    /// Throws UnitError.
    DisplayState state() const { return m_files.load(); }

    /// The next so many calls of the tool fail, in the place of an earlier order. Throws UnitError, also
    /// when a tool is at work just now.
    void orderFailures(DisplayTool tool, unsigned calls) const;

    /// From now on the tools take so much longer, in milliseconds. Throws UnitError likewise.
    void setLate(int late) const;

private:
    DisplayFiles m_files{""};
    std::string m_state; ///< these two on the host
    std::string m_lock;
};

} // namespace headunit
