#include "unit/UnitFolder.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <utility>

#include "unit/UnitError.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kEverybodysFolder = 01777;

struct Link {
    const char* unitPath;
    const char* target;
};

constexpr Link kLinks[] = {
    {"/dev/fd", "/proc/self/fd"},
    {"/dev/stdin", "/proc/self/fd/0"},
    {"/dev/stdout", "/proc/self/fd/1"},
    {"/dev/stderr", "/proc/self/fd/2"},
    // The kernel finds the terminals that belong to a multiplexer only when it lies among them.
    {"/dev/ptmx", "pts/ptmx"},
    // Where a person looks first; the pictures are drawn where the unit can reach.
    {"/display-0.png", "run/headunit/display-0.png"},
    {"/display-4.png", "run/headunit/display-4.png"},
};

fs::path makeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        throw UnitError("cannot make the folder " + folder.string() + ": " + error.message());
    fs::path real = fs::canonical(folder, error);
    if (error)
        throw UnitError("cannot use the folder " + folder.string() + ": " + error.message());
    return real;
}

} // namespace

UnitFolder UnitFolder::temporary() {
    const char* given = std::getenv("TMPDIR");
    const fs::path parent = makeFolder(given != nullptr && *given != '\0' ? given : "/tmp");
    std::string path = (parent / "headunit-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr)
        throw systemError("cannot make a unit folder in " + parent.string(), errno);
    UnitFolder folder(path, true);
    folder.layOut();
    return folder;
}

UnitFolder UnitFolder::kept(const std::string& given) {
    UnitFolder folder(makeFolder(given).string(), false);
    folder.layOut();
    return folder;
}

UnitFolder::UnitFolder(std::string path, bool removed) : m_path(std::move(path)), m_removed(removed) {}

UnitFolder::UnitFolder(UnitFolder&& other) noexcept
    : m_path(std::move(other.m_path)), m_removed(std::exchange(other.m_removed, false)) {}

UnitFolder::~UnitFolder() {
    if (!m_removed)
        return;
    std::error_code error;
    fs::remove_all(m_path, error);
    if (error)
        std::cerr << "headunit: cannot remove " << m_path << ": " << error.message() << '\n';
}

std::string UnitFolder::hostPath(const std::string& unitPath) const {
    return m_path + unitPath;
}

std::string UnitFolder::claim(const std::string& unitPath) {
    std::string path = hostPath(unitPath);
    makeFolder(fs::path(path).parent_path());
    return path;
}

void UnitFolder::layOut() const {
    for (const char* folder : {"/dev", "/mnt/app", "/ifs", "/vrk", "/tmp", "/run/headunit"})
        makeFolder(hostPath(folder));
    if (::chmod(hostPath("/tmp").c_str(), kEverybodysFolder) != 0)
        throw systemError("cannot open up " + hostPath("/tmp"), errno);
    for (const Link& link : kLinks) {
        std::error_code error;
        fs::create_symlink(link.target, hostPath(link.unitPath), error);
        if (error && error != std::errc::file_exists)
            throw UnitError("cannot make " + hostPath(link.unitPath) + ": " + error.message());
    }
}

} // namespace headunit
