#include "displays/DisplayFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "displays/Screen.h"
#include "pictures/PngFile.h"
#include "unit/UnitError.h"
#include "unit/UnitTree.h"

namespace headunit {
namespace {

constexpr mode_t kFileMode = 0644;
constexpr char kUnfinished[] = ".new";

bool exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

void makeEmpty(const std::string& path) {
    const System::Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    if (!file)
        throw systemError("cannot make " + path, errno);
}

} // namespace

std::string DisplayFiles::pictureName(int display) {
    return "display-" + std::to_string(display) + ".png";
}

DisplayFiles::DisplayFiles(std::string folder) : m_folder(std::move(folder) + "/") {}

System::Descriptor DisplayFiles::openLock() const {
    const std::string path = m_folder + kLock;
    System::Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    if (!file)
        throw systemError("cannot open " + path, errno);
    return file;
}

System::Descriptor DisplayFiles::lock() const {
    System::Descriptor file = openLock();
    int status;
    do
        status = ::flock(file.get(), LOCK_EX);
    while (status != 0 && errno == EINTR);
    if (status != 0)
        throw systemError("cannot lock " + m_folder + kLock, errno);
    return file;
}

System::Descriptor DisplayFiles::tryLock() const {
    System::Descriptor file = openLock();
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(file) : System::Descriptor();
}

DisplayState DisplayFiles::load() const {
    const std::string path = m_folder + kState;
    return exists(path) ? displayStateOf(readHostFile(path)) : DisplayState();
}

void DisplayFiles::save(const DisplayState& state) const {
    replace(kState, textOf(state));
}

void DisplayFiles::draw(DisplayState& state) const {
    for (const int display : DisplayState::kDisplays) {
        const std::string name = pictureName(display);
        if (state.stale.count(display) != 0 || !exists(m_folder + name))
            replace(name, encodePng(screenOf(shownOn(state, display))));
    }
    state.stale.clear();
}

void DisplayFiles::replace(const std::string& name, const std::string& content) const {
    const std::string finished = m_folder + name;
    const std::string unfinished = finished + kUnfinished;
    makeEmpty(unfinished);
    overwriteHostFile(unfinished, content);
    if (std::rename(unfinished.c_str(), finished.c_str()) != 0)
        throw systemError("cannot replace " + finished, errno);
}

} // namespace headunit
