#pragma once

#include <string>
#include <vector>

namespace headunit {

/// Where the loader of the unit's programs looks first.
constexpr char kUnitLibraries[] = "/vrk/lib";

/// A folder of the host that the unit sees at the same path.
struct SharedFolder {
    std::string path;
    bool writable = false;
};

/// One of the host's top-level names of /usr: a link with its target, or a real folder (empty target).
struct SystemFolder {
    std::string path;
    std::string linkTarget;
};

/// Everything that decides what the processes of a unit see. All paths are absolute.
struct SandboxLayout {
    std::string unitFolder;
    std::vector<SystemFolder> systemFolders;
    std::vector<std::string> configurationFiles; ///< of /etc, seen read-only
    std::vector<SharedFolder> sharedFolders;     ///< in any order; useless and harmful ones are left out
    std::string workingDirectory = "/";
    std::string programFolder; ///< shared read-only and first in the unit's PATH
    std::string searchPath;    ///< the PATH that comes after it
    std::string libraryPath;   ///< the LD_LIBRARY_PATH that comes after the unit's own libraries
    bool ownNetwork = true;    ///< a network of its own, loopback only; else the host's
};

/// A list of folders, as PATH is one, with one more in front.
std::string inFront(const std::string& folder, const std::string& list);

/// The command line of bwrap for this layout, from "bwrap" to "--"; the command follows it.
std::vector<std::string> sandboxArguments(const SandboxLayout& layout);

} // namespace headunit
