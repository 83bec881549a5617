#include "support/UnitFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "devices/DeviceList.h"
#include "devices/GpioPorts.h"
#include "unit/UnitFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> kFolders = {"/dev/", "/mnt/app/", "/ifs/"};
constexpr std::array<std::string_view, 4> kFiles = {
    "/tmp/resp.txt", "/tmp/colorscale_7bars_888_800x480.bmp", "/tmp/greyscale_33bars_888_800x480.bmp",
    "/tmp/greyscale_11bars_888_800x480.bmp"};
constexpr char kPackedPicture[] = "/mnt/app/vrk/production/greyscale_33bars_888_800x480.bmp.gz";

constexpr std::array<std::string_view, 6> kMedia = {"/dev/sda0",         "/dev/sdb0",   "/dev/cd0",
                                                    "/dev/umass/umass0", "/dev/mnand0", "/dev/fs0"};
constexpr std::size_t kMediumBytes = 16 * 4096;
constexpr char kWlanDriver[] = "/dev/shmem/mv8787wl";

/// Nodes behind which a simulated unit has more than a file.
std::map<std::string, std::string> otherFiles() {
    std::map<std::string, std::string> files = {{kWlanDriver, ""}};
    for (const std::string_view medium : kMedia)
        files.emplace(medium, std::string(kMediumBytes, medium.back()));
    return files;
}

const std::array<std::string, 6> kMissing = {
    "/dev/nvgpio/usb_pwr_1", "/dev/nvgpio/sd_wp1", "/dev/nvsku/rev",
    "/dev/umass/umass0",     kWlanDriver,          kPackedPicture};
const std::map<std::string, std::string> kOdd = {{"/dev/nvgpio/usb_pwr_1", ""},
                                                 {"/dev/nvgpio/sd_wp1", "x"},
                                                 {"/dev/nvsku/rev", "\t12345678"},
                                                 {"/dev/nvsku/serial_num", ""},
                                                 {"/mnt/app/img_ver.txt", std::string(300, '\xFF')},
                                                 {"/dev/mnand0", "short"},
                                                 {kPackedPicture, "\x1F\x8B no picture"}};

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/// The unit's folder and what its files hold when it is new.
class Tree {
public:
    Tree() {
        headunit::install(m_devices, m_folder);
        m_ports.install(m_folder);
        for (const auto& [path, content] : otherFiles())
            m_folder.createFile(path, content);
        for (const auto& entry : fs::recursive_directory_iterator(m_folder.path()))
            if (entry.is_regular_file() && !entry.is_symlink())
                m_new.emplace(entry.path().string().substr(m_folder.path().size()),
                              contentOf(entry.path()));
    }

    std::string hostPath(const std::string& unitPath) const { return m_folder.hostPath(unitPath); }

    /// Whoever writes to it does not tell.
    void note(const std::string& unitPath) { m_changed.insert(unitPath); }

    void write(const std::string& unitPath, const std::string& content) {
        note(unitPath);
        std::ofstream(hostPath(unitPath), std::ios::binary | std::ios::trunc) << content;
    }

    void remove(const std::string& unitPath) {
        note(unitPath);
        fs::remove(hostPath(unitPath));
    }

    void renew() {
        const std::set<std::string> changed = std::exchange(m_changed, {});
        for (const std::string& path : changed) {
            const auto known = m_new.find(path);
            if (known == m_new.end())
                fs::remove(hostPath(path));
            else
                std::ofstream(hostPath(path), std::ios::binary | std::ios::trunc) << known->second;
        }
    }

private:
    static std::string contentOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    headunit::UnitFolder m_folder = headunit::UnitFolder::temporary();
    headunit::DeviceList m_devices = headunit::allDevices();
    headunit::GpioPorts m_ports;
    std::map<std::string, std::string> m_new;
    std::set<std::string> m_changed;
};

Tree& tree() {
    static Tree only;
    return only;
}

bool isOfUnit(std::string_view path) {
    for (const std::string_view folder : kFolders)
        if (beginsWith(path, folder))
            return true;
    for (const std::string_view file : kFiles)
        if (path == file)
            return true;
    return false;
}

/// Where the machine has what the code names so.
std::string found(const char* path) {
    return isOfUnit(path) ? tree().hostPath(path) : path;
}

std::string foundToBeChanged(const char* path) {
    if (isOfUnit(path))
        tree().note(path);
    return found(path);
}

} // namespace

void UnitFiles::renew(unsigned faults) {
    tree().renew();
    if ((faults & Odd) != 0)
        for (const auto& [path, content] : kOdd)
            tree().write(path, content);
    if ((faults & Missing) != 0)
        for (const std::string& path : kMissing)
            tree().remove(path);
}

// What the linker calls in place of the system.
extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_access(const char* path, int mode);
int __real_stat(const char* path, struct stat* status);
int __real_lstat(const char* path, struct stat* status);
int __real_unlink(const char* path);
int __real_remove(const char* path);
gzFile __real_gzopen(const char* path, const char* mode);

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool isRead = (flags & O_ACCMODE) == O_RDONLY;
    return __real_open((isRead ? found(path) : foundToBeChanged(path)).c_str(), flags, mode);
}

int __wrap_access(const char* path, int mode) {
    return __real_access(found(path).c_str(), mode);
}

int __wrap_stat(const char* path, struct stat* status) {
    return __real_stat(found(path).c_str(), status);
}

int __wrap_lstat(const char* path, struct stat* status) {
    return __real_lstat(found(path).c_str(), status);
}

int __wrap_unlink(const char* path) {
    return __real_unlink(foundToBeChanged(path).c_str());
}

int __wrap_remove(const char* path) {
    return __real_remove(foundToBeChanged(path).c_str());
}

gzFile __wrap_gzopen(const char* path, const char* mode) {
    return __real_gzopen(found(path).c_str(), mode);
}
}
