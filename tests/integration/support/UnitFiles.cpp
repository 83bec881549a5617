#include "support/UnitFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

void require(bool success, const std::string& path) {
    if (!success)
        throw std::runtime_error(path + ": " + std::strerror(errno));
}

} // namespace

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    require(static_cast<bool>(file.flush()), path);
}

std::string contentOf(const std::string& path) {
    const std::ifstream file(path, std::ios::binary);
    // What /proc tells of may go between its opening and
    // its reading; the copying takes that for the end.
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

bool exists(const std::string& path) {
    struct stat information {};
    return ::lstat(path.c_str(), &information) == 0;
}

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
