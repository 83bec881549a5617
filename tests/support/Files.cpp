#include "support/Files.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush())
        throw std::runtime_error(path + ": " + std::strerror(errno));
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
