#include "platform/Descriptors.h"

#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "platform/qnx/CloseOnExec.h"

namespace System {

Descriptor openTcpSocket() {
    return closeOnExec(::socket(AF_INET, SOCK_STREAM, 0));
}

Descriptor acceptConnection(int listeningSocket) {
    return closeOnExec(::accept(listeningSocket, nullptr, nullptr));
}

bool openPipe(Descriptor& readEnd, Descriptor& writeEnd) {
    int ends[2];
    if (::pipe(ends) != 0)
        return false;
    Descriptor first = closeOnExec(ends[0]);
    Descriptor second = closeOnExec(ends[1]);
    if (!first || !second)
        return false;
    readEnd = std::move(first);
    writeEnd = std::move(second);
    return true;
}

} // namespace System
