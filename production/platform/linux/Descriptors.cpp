#include "platform/Descriptors.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace System {

Descriptor openTcpSocket() {
    return Descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

Descriptor acceptConnection(int listeningSocket) {
    return Descriptor(::accept4(listeningSocket, nullptr, nullptr, SOCK_CLOEXEC));
}

bool openPipe(Descriptor& readEnd, Descriptor& writeEnd) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    readEnd.reset(ends[0]);
    writeEnd.reset(ends[1]);
    return true;
}

} // namespace System
