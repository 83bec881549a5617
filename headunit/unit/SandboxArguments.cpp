#include "unit/SandboxArguments.h"

#include <algorithm>
#include <initializer_list>

namespace headunit {
namespace {

constexpr const char* kUnitFolders[] = {"/dev", "/mnt/app", "/ifs", "/vrk", "/tmp", "/run/headunit"};
constexpr const char* kHostNodes[] = {"/dev/null",    "/dev/zero", "/dev/full", "/dev/random",
                                      "/dev/urandom", "/dev/tty",  "/dev/pts"};
constexpr char kSharedMemory[] = "/dev/shm";

using Arguments = std::vector<std::string>;

void add(Arguments& arguments, std::initializer_list<std::string> more) {
    arguments.insert(arguments.end(), more);
}

bool isAtOrUnder(const std::string& path, const std::string& folder) {
    if (folder == "/")
        return true;
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

/// Whether the host's folder would cover something that is the unit's own.
bool wouldCover(const std::string& folder, const SandboxLayout& layout) {
    const auto covers = [&](const std::string& own) { return isAtOrUnder(own, folder); };
    return std::any_of(std::begin(kUnitFolders), std::end(kUnitFolders), covers) ||
           std::any_of(std::begin(kHostNodes), std::end(kHostNodes), covers) ||
           std::any_of(layout.systemFolders.begin(), layout.systemFolders.end(),
                       [&](const SystemFolder& system) { return covers(system.path); }) ||
           covers("/usr") || covers("/etc") || covers(kSharedMemory) || isAtOrUnder(folder, "/proc");
}

std::vector<SharedFolder> usefulShares(const SandboxLayout& layout) {
    std::vector<SharedFolder> wanted = layout.sharedFolders;
    if (!layout.programFolder.empty())
        wanted.push_back({layout.programFolder, false});
    // A folder comes after those above it, and the writable one of two equals comes first.
    std::sort(wanted.begin(), wanted.end(), [](const SharedFolder& left, const SharedFolder& right) {
        return left.path != right.path ? left.path < right.path : left.writable && !right.writable;
    });
    std::vector<SharedFolder> useful;
    for (const SharedFolder& folder : wanted) {
        const auto holdsIt = [&](const SharedFolder& other) {
            return isAtOrUnder(folder.path, other.path);
        };
        const bool repeated = !useful.empty() && useful.back().path == folder.path;
        const bool visibleAnyway =
            !folder.writable && folder.path != layout.programFolder &&
            (isAtOrUnder(folder.path, "/usr") || std::any_of(useful.begin(), useful.end(), holdsIt));
        if (!repeated && !visibleAnyway && !wouldCover(folder.path, layout))
            useful.push_back(folder);
    }
    return useful;
}

void addHostSystem(Arguments& arguments, const SandboxLayout& layout) {
    add(arguments, {"--ro-bind", "/usr", "/usr"});
    for (const SystemFolder& folder : layout.systemFolders) {
        if (folder.linkTarget.empty())
            add(arguments, {"--ro-bind", folder.path, folder.path});
        else
            add(arguments, {"--symlink", folder.linkTarget, folder.path});
    }
    add(arguments, {"--dir", "/etc"});
    for (const std::string& file : layout.configurationFiles)
        add(arguments, {"--ro-bind-try", file, file});
    add(arguments, {"--proc", "/proc"});
}

void addUnit(Arguments& arguments, const SandboxLayout& layout) {
    for (const char* folder : kUnitFolders)
        add(arguments, {"--bind", layout.unitFolder + folder, folder});
    for (const char* node : kHostNodes)
        add(arguments, {"--dev-bind-try", node, node});
    add(arguments, {"--perms", "1777", "--tmpfs", kSharedMemory});
}

} // namespace

std::string inFront(const std::string& folder, const std::string& list) {
    return folder + (list.empty() ? "" : ":" + list);
}

std::vector<std::string> sandboxArguments(const SandboxLayout& layout) {
    Arguments arguments = {"bwrap",         "--die-with-parent", "--unshare-user-try",
                           "--unshare-pid", "--unshare-ipc",     "--unshare-uts"};
    if (layout.ownNetwork)
        add(arguments, {"--unshare-net"});
    addHostSystem(arguments, layout);
    addUnit(arguments, layout);
    // Last, because they may lie under the unit's /tmp.
    for (const SharedFolder& folder : usefulShares(layout))
        add(arguments, {folder.writable ? "--bind" : "--ro-bind", folder.path, folder.path});
    add(arguments, {"--setenv", "TMPDIR", "/tmp"});
    add(arguments, {"--setenv", "LD_LIBRARY_PATH", inFront(kUnitLibraries, layout.libraryPath)});
    if (!layout.programFolder.empty())
        add(arguments, {"--setenv", "PATH", inFront(layout.programFolder, layout.searchPath)});
    add(arguments, {"--chdir", layout.workingDirectory, "--"});
    return arguments;
}

} // namespace headunit
