#include "control/ControlSocket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "unit/UnitError.h"

namespace headunit {
namespace {

constexpr int kBacklog = 16;

/// An address has room for about a hundred characters, and the way to a unit's folder may be longer: the
/// name goes through the open folder instead.
sockaddr_un addressIn(int folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder,
                  name.c_str());
    return address;
}

System::Descriptor openFolder(const std::string& path) {
    return System::Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void removeSocket(int folder, const std::string& name) {
    struct stat present {};
    if (::fstatat(folder, name.c_str(), &present, AT_SYMLINK_NOFOLLOW) == 0 && S_ISSOCK(present.st_mode))
        ::unlinkat(folder, name.c_str(), 0);
}

} // namespace

ControlSocket::ControlSocket(const std::string& path) {
    const std::filesystem::path whole(path);
    const std::string name = whole.filename().string();
    System::Descriptor opened = openFolder(whole.parent_path().string());
    if (!opened)
        throw systemError("cannot open " + whole.parent_path().string(), errno);
    if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0)
        throw UnitError("another headunit is at work here (" + whole.parent_path().string() +
                        " is locked)");
    removeSocket(opened.get(), name);
    System::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = addressIn(opened.get(), name);
    if (!socket ||
        ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), kBacklog) != 0)
        throw systemError("cannot listen at " + path, errno);
    folder = std::move(opened);
    listener = std::move(socket);
}

System::Descriptor connectToControl(const std::string& folder) {
    const System::Descriptor opened = openFolder(folder);
    System::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!opened || !socket)
        return System::Descriptor();
    const sockaddr_un address = addressIn(opened.get(), kControlName);
    int status;
    do
        status = ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    while (status != 0 && errno == EINTR);
    return status == 0 ? std::move(socket) : System::Descriptor();
}

} // namespace headunit
