#include "platform/BlockDevice.h"

#include <linux/fs.h>
#include <stddef.h> // the kernel header below names its types without std
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdint>

namespace System {

int blockDeviceStatus(int descriptor, struct stat& status) {
    if (::fstat(descriptor, &status) != 0)
        return errno;
    if (S_ISREG(status.st_mode)) {
        status.st_blocks = status.st_size / status.st_blksize;
        return 0;
    }
    if (!S_ISBLK(status.st_mode))
        return 0;
    int blockBytes = 0;
    std::uint64_t deviceBytes = 0;
    if (::ioctl(descriptor, BLKSSZGET, &blockBytes) != 0 ||
        ::ioctl(descriptor, BLKGETSIZE64, &deviceBytes) != 0)
        return errno;
    status.st_blksize = blockBytes;
    status.st_blocks = static_cast<blkcnt_t>(deviceBytes / static_cast<std::uint64_t>(blockBytes));
    return 0;
}

} // namespace System
