#include "commands/UnitSetup.h"

#include <unistd.h>

#include <filesystem>

#include "unit/UnitError.h"

namespace headunit {

UnitFolder openUnitFolder(const std::string& given) {
    return given.empty() ? UnitFolder::temporary() : UnitFolder::kept(given);
}

void requireDaemon(const std::string& path) {
    if (::access(path.c_str(), X_OK) != 0)
        throw UnitError("there is no daemon at " + path +
                        "; build the target 'production' or name one with --daemon-path");
}

Environment daemonEnvironment(const std::optional<std::string>& supplier) {
    if (!supplier)
        return {};
    return {{"FIRST_TIER_SUPPLIER", *supplier}};
}

void passOn(const std::optional<std::string>& supplier, std::vector<std::string>& launcher) {
    if (supplier)
        launcher.push_back("--supplier=:" + *supplier); // the parser takes no empty value
}

void shareFolderOf(const std::string& program, SandboxLayout& layout) {
    layout.sharedFolders.push_back({std::filesystem::path(program).parent_path().string(), false});
}

} // namespace headunit
