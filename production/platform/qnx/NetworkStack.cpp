#include "platform/NetworkStack.h"

#include <sys/neutrino.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>

#include "platform/qnx/CloseOnExec.h"
#include "platform/qnx/Vector.h"
#include "platform/qnx/WaitLimit.h"

namespace System {

Descriptor openDatagramSocket() {
    return closeOnExec(::socket(AF_INET, SOCK_DGRAM, 0));
}

// A socket is a connection to the network stack, which finds the interface's name in the request.
int messageInterface(int socket, const char*, const std::vector<ReplyPart>& parts) {
    const std::vector<iov_t> vector = vectorOf(parts);
    const int count = static_cast<int>(vector.size());
    if (!limitNextWait(kLongestAnswer))
        return -errno;
    const int result = ::MsgSendv_r(socket, vector.data(), count, vector.data(), count);
    if (result == 0)
        return 0;
    // The call leaves errno alone. Its failures are negative already, a driver's own word may not be.
    errno = std::abs(result);
    return -errno;
}

} // namespace System
