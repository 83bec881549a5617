#include "unit/LocalSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace headunit {
namespace {

constexpr int kBacklog = 16;

sockaddr_un addressIn(int folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder,
                  name.c_str());
    return address;
}

} // namespace

System::Descriptor openFolder(const std::string& path) {
    return System::Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

System::Descriptor listenIn(int folder, const std::string& name, int type) {
    removeSocket(folder, name);
    System::Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = addressIn(folder, name);
    if (!socket ||
        ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), kBacklog) != 0)
        return System::Descriptor();
    return socket;
}

System::Descriptor connectIn(int folder, const std::string& name, int type) {
    System::Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    if (!socket)
        return System::Descriptor();
    const sockaddr_un address = addressIn(folder, name);
    int status;
    do
        status = ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    while (status != 0 && errno == EINTR);
    return status == 0 ? std::move(socket) : System::Descriptor();
}

void removeSocket(int folder, const std::string& name) {
    struct stat present {};
    if (::fstatat(folder, name.c_str(), &present, AT_SYMLINK_NOFOLLOW) == 0 && S_ISSOCK(present.st_mode))
        ::unlinkat(folder, name.c_str(), 0);
}

} // namespace headunit
