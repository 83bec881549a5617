#include "platform/NetworkStack.h"

#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/linux/ManagerSocket.h"

namespace System {
namespace {

constexpr char kManagers[] = "/dev/io-net/";
constexpr std::uint32_t kPlainMessage = 0;

// By which the wireless chip's driver takes host commands from its user.
constexpr unsigned long kHostCommand = SIOCDEVPRIVATE + 1;

int askManager(const char* path, const std::vector<ReplyPart>& parts) {
    const Descriptor manager = ManagerSocket::connect(path);
    if (!manager)
        return errno;
    std::vector<SendPart> send;
    send.reserve(parts.size());
    for (const ReplyPart& part : parts)
        send.push_back({part.bytes, part.size});
    return ManagerSocket::request(manager.get(), kPlainMessage, send, parts);
}

/// The kernel's driver takes the data alone: what the other parts say, its request number says.
int askKernel(int socket, const char* interface, const std::vector<ReplyPart>& parts) {
    ifreq request{};
    std::strncpy(request.ifr_name, interface, sizeof request.ifr_name - 1);
    request.ifr_data = static_cast<char*>(parts.back().bytes);
    // Not repeated after EINTR: the chip may have got the command already.
    return ::ioctl(socket, kHostCommand, &request) < 0 ? errno : 0;
}

} // namespace

Descriptor openDatagramSocket() {
    return Descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
}

int messageInterface(int socket, const char* interface, const std::vector<ReplyPart>& parts) {
    const std::string manager = std::string(kManagers) + interface;
    const int result = ManagerSocket::isAt(manager.c_str()) ? askManager(manager.c_str(), parts)
                                                            : askKernel(socket, interface, parts);
    if (result == 0)
        return 0;
    // A manager may answer any number; what comes back from here is negative in any case.
    errno = result == INT_MIN ? EPROTO : std::abs(result);
    return -errno;
}

} // namespace System
