#include "platform/BlockDevice.h"

#include <cerrno>

#include "platform/Node.h"

namespace System {

// The block file system counts a device in the blocks that it has, so there is nothing to add.
int blockDeviceStatus(int descriptor, struct stat& status) {
    return nodeStatus(descriptor, status) ? 0 : errno;
}

} // namespace System
