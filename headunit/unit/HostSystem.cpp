#include "unit/HostSystem.h"

#include <cstdlib>
#include <filesystem>

#include "unit/UnitError.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSystemFolders[] = {"/bin", "/sbin", "/lib", "/lib32", "/lib64", "/libx32"};
constexpr const char* kConfigurationFiles[] = {
    "/etc/alternatives", "/etc/group",     "/etc/hosts",         "/etc/ld.so.cache", "/etc/ld.so.conf",
    "/etc/ld.so.conf.d", "/etc/localtime", "/etc/nsswitch.conf", "/etc/passwd"};

std::vector<SystemFolder> systemFolders() {
    std::vector<SystemFolder> folders;
    for (const char* path : kSystemFolders) {
        std::error_code error;
        if (fs::is_symlink(path, error))
            folders.push_back({path, fs::read_symlink(path, error).string()});
        else if (fs::is_directory(path, error))
            folders.push_back({path, ""});
    }
    return folders;
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

std::string ownProgram() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error)
        throw UnitError("cannot tell where headunit itself is: " + error.message());
    return program.string();
}

SandboxLayout layoutOnThisHost() {
    std::error_code error;
    const std::string here = fs::current_path(error).string();
    if (error)
        throw UnitError("there is no working directory: " + error.message());

    SandboxLayout layout;
    layout.systemFolders = systemFolders();
    layout.configurationFiles.assign(std::begin(kConfigurationFiles), std::end(kConfigurationFiles));
    layout.sharedFolders = {{here, true}};
    layout.workingDirectory = here;
    layout.programFolder = fs::path(ownProgram()).parent_path().string();
    layout.searchPath = variable("PATH");
    layout.libraryPath = variable("LD_LIBRARY_PATH");
    return layout;
}

} // namespace headunit
