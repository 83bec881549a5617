#include "platform/Node.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "platform/BlockDevice.h"
#include "platform/Uninterrupted.h"
#include "platform/posix/NodeCalls.h"
#include "platform/posix/Readiness.h"

namespace System {
namespace {

/// The kind and permissions; 0 when it does not tell.
mode_t modeOf(int node) {
    struct stat status {};
    return nodeStatus(node, status) ? status.st_mode : 0;
}

/// `events` is what the transfer may have to wait for; 0 for nothing.
ssize_t moveAs(mode_t mode, int node, short events, const std::function<ssize_t()>& transfer) {
    if (S_ISREG(mode) || S_ISBLK(mode))
        return uninterrupted(transfer);
    return transferInTime(node, events, transfer);
}

ssize_t move(int node, short events, const std::function<ssize_t()>& transfer) {
    return moveAs(modeOf(node), node, events, transfer);
}

/// Nobody waits for nothing.
short toReceive(std::size_t size) {
    return size == 0 ? 0 : POLLIN;
}

} // namespace

Descriptor openNode(const char* path, int access) {
    Descriptor node = openFile(path, access | O_NONBLOCK);
    // What other nodes do while they are opened, a pipe does not without waiting: meet its writer.
    if (node && access == O_RDONLY && S_ISFIFO(modeOf(node.get())) &&
        !waitUntilReady(node.get(), POLLIN, std::chrono::steady_clock::now() + kLongestNodeWait))
        node.reset();
    return node;
}

// A drive that is opened without waiting is open without its medium, too, so that the system does not
// say that none is inserted, nor how large it is.
Descriptor openBlockDevice(const char* path, int access) {
    Descriptor device = openNode(path, access);
    if (!device || !S_ISBLK(modeOf(device.get())))
        return device;
    return openFile(path, access);
}

off_t nodeSize(int node) {
    struct stat status {};
    if (!nodeStatus(node, status))
        return -1;
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return -1;
    }
    off_t end = 0;
    const auto seek = [&] {
        end = ::lseek(node, 0, SEEK_END);
        return ssize_t{end == -1 ? -1 : 0};
    };
    if (moveAs(status.st_mode, node, 0, seek) == 0)
        return end;
    return errno == ESPIPE ? 0 : -1;
}

ssize_t readNode(int node, void* bytes, std::size_t size) {
    return move(node, toReceive(size), [=] { return ::read(node, bytes, size); });
}

ssize_t writeNode(int node, const void* bytes, std::size_t size) {
    return move(node, POLLOUT, [=] { return ::write(node, bytes, size); });
}

ssize_t readNodeAt(int node, void* bytes, std::size_t size, off_t position) {
    const ssize_t count =
        move(node, toReceive(size), [=] { return ::pread(node, bytes, size, position); });
    if (count >= 0 || (errno != ENOSYS && errno != ESPIPE))
        return count;
    const auto seek = [=] { return ssize_t{::lseek(node, position, SEEK_SET) == -1 ? -1 : 0}; };
    if (transferInTime(node, 0, seek) == -1 && errno != ESPIPE)
        return -1;
    return readNode(node, bytes, size);
}

} // namespace System
