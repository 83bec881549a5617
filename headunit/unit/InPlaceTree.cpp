#include "unit/InPlaceTree.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr mode_t kRecordMode = 0600;
constexpr mode_t kFolderMode = 0755;

bool exists(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

} // namespace

InPlaceTree::InPlaceTree(const std::string& record) : m_record(record) {
    System::Descriptor file(
        ::open(record.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, kRecordMode));
    if (!file)
        throw systemError("cannot keep a record of the changes in " + record, errno);
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        throw UnitError("another unit is set up on this machine already (" + record + " is locked)");
    m_recordFile = std::move(file);
    m_made = lines(readHostFile(record));
    removeAll();
}

InPlaceTree::~InPlaceTree() {
    removeAll();
    ::unlink(m_record.c_str());
}

std::string InPlaceTree::claim(const std::string& unitPath) {
    if (exists(unitPath) && std::find(m_made.begin(), m_made.end(), unitPath) == m_made.end())
        throw UnitError(unitPath + " exists on this machine and is not the unit's; it is left as it is");
    makeFolder(std::filesystem::path(unitPath).parent_path().string());
    writeDown(unitPath);
    return unitPath;
}

void InPlaceTree::makeFolder(const std::string& folder) {
    if (exists(folder))
        return;
    makeFolder(std::filesystem::path(folder).parent_path().string());
    writeDown(folder);
    if (::mkdir(folder.c_str(), kFolderMode) != 0)
        throw systemError("cannot make the folder " + folder, errno);
}

void InPlaceTree::writeDown(const std::string& path) {
    const std::string line = path + "\n";
    if (::write(m_recordFile.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw systemError("cannot write " + m_record, errno);
    m_made.push_back(path);
}

void InPlaceTree::removeAll() {
    for (auto path = m_made.rbegin(); path != m_made.rend(); ++path) {
        if (std::remove(path->c_str()) == 0 || errno == ENOENT)
            continue;
        if (errno != ENOTEMPTY && errno != EEXIST)
            std::cerr << "headunit: cannot remove " << *path << ": "
                      << UnitError(systemError("", errno)).what() << '\n';
    }
    m_made.clear();
    if (::ftruncate(m_recordFile.get(), 0) != 0)
        std::cerr << "headunit: cannot clear " << m_record << '\n';
}

} // namespace headunit
