#pragma once

#include <sys/stat.h>

#include "wire/Descriptor.h"

namespace System {

/// Opens for `access` (O_RDONLY or O_RDWR) what is to be used by blocks. Waits as long as a drive takes
/// to get hold of its medium, for anything else no longer than `openNode`. Empty and errno on failure.
/// Any thread.
Descriptor openBlockDevice(const char* path, int access);

/// What `fstat` tells of a block device, with the fields that a user of blocks needs: `st_blksize` is
/// the size of a block in bytes and `st_blocks` the number of blocks of that size. On Linux a regular
/// file that stands in for a device is counted in its own preferred block size. Returns 0 or an error
/// number. Any thread.
int blockDeviceStatus(int descriptor, struct stat& status);

} // namespace System
