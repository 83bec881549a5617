#include "devices/UnitTools.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "unit/HostSystem.h"
#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr const char* kTools[] = {"/vrk/bin/apps/showimage", "/vrk/bin/apps/dmdt",
                                  "/vrk/lib/mv8787bt.so"};

void makeLink(const std::string& path, const std::string& target) {
    struct stat present {};
    const bool isThere = ::lstat(path.c_str(), &present) == 0;
    if (isThere && !S_ISLNK(present.st_mode))
        return;
    if (isThere && ::unlink(path.c_str()) != 0)
        throw systemError("cannot replace " + path, errno);
    if (::symlink(target.c_str(), path.c_str()) != 0)
        throw systemError("cannot make " + path, errno);
}

} // namespace

void UnitTools::install(UnitTree& tree) {
    const auto programs = std::filesystem::path(ownProgram()).parent_path();
    for (const char* tool : kTools)
        makeLink(tree.claim(tool), (programs / std::filesystem::path(tool).filename()).string());
}

} // namespace headunit
