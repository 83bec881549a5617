#include "support/UnitFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

void require(bool success, const std::string& path) {
    if (!success)
        throw std::runtime_error(path + ": " + std::strerror(errno));
}

} // namespace

void removeFile(const std::string& path) {
    require(std::remove(path.c_str()) == 0, path);
}

void makeFolder(const std::string& path) {
    require(::mkdir(path.c_str(), S_IRWXU) == 0, path);
}

void makeFifo(const std::string& path) {
    require(::mkfifo(path.c_str(), S_IRUSR | S_IWUSR) == 0, path);
}

void makeSilent(const std::string& path) {
    if (exists(path))
        removeFile(path);
    makeFifo(path);
}

void makeLink(const std::string& path, const std::string& target) {
    require(::symlink(target.c_str(), path.c_str()) == 0, path);
}
