#include "control/ControlSocket.h"

#include <sys/file.h>
#include <sys/socket.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "unit/LocalSocket.h"
#include "unit/UnitError.h"

namespace headunit {

ControlSocket::ControlSocket(const std::string& path) {
    const std::filesystem::path whole(path);
    System::Descriptor opened = openFolder(whole.parent_path().string());
    if (!opened)
        throw systemError("cannot open " + whole.parent_path().string(), errno);
    if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0)
        throw UnitError("another headunit is at work here (" + whole.parent_path().string() +
                        " is locked)");
    System::Descriptor socket = listenIn(opened.get(), whole.filename().string(), SOCK_STREAM);
    if (!socket)
        throw systemError("cannot listen at " + path, errno);
    folder = std::move(opened);
    listener = std::move(socket);
}

System::Descriptor connectToControl(const std::string& folder) {
    const System::Descriptor opened = openFolder(folder);
    if (!opened)
        return System::Descriptor();
    return connectIn(opened.get(), kControlName, SOCK_STREAM);
}

} // namespace headunit
