#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "unit/ChildProcess.h"
#include "unit/SandboxArguments.h"
#include "wire/Descriptor.h"

namespace headunit {

/// One command running inside a unit. Everything in the unit is killed when this object goes, and by the
/// kernel when this process dies. Use it from the main thread.
class Sandbox {
public:
    /// Starts bwrap, in it `launcher` with "--stderr N --" and in that `command`. The launcher is a
    /// program that calls enteredSandbox(N) first and runs the command then. Does not wait for any of
    /// it. Throws UnitError when bwrap is missing.
    Sandbox(const SandboxLayout& layout, const std::vector<std::string>& launcher,
            const std::vector<std::string>& command);

    /// The command's exit status once it has ended, else nothing. Does not block. Throws UnitError when
    /// bwrap could not build the unit; its own complaint is in the text.
    std::optional<int> ended();

private:
    System::Descriptor m_complaints; ///< what is said before the launcher runs
    std::string m_said;
    std::unique_ptr<ChildProcess> m_bwrap;
};

/// Called first by the launcher inside: tells the outside that the unit stands, and takes the outer
/// standard error, which it owns from here on, as its own.
void enteredSandbox(int standardError);

} // namespace headunit
