#pragma once

/// How much `uap_ioctl` tells on standard error: the sizes of its buffer from 2 on.
extern int debug_level;

/// The wireless interface whose driver it talks to.
extern const char dev_name[];

/// Sends a host command to the wireless chip and takes its reply. Any thread, one request at a time.
/// Blocks until the chip has answered, for some seconds at most.
///
/// `buffer` has `bufferSize` bytes: four that are filled in here, the command's header (code, size,
/// sequence number and result, 16 bits each, least significant byte first), the command's data. `*size`
/// is the command's size and becomes the reply's, both with the header.
///
/// Returns 1 when the buffer holds a reply, a negative error number when the driver refused, and 0 for
/// everything else; the reason of what is not 1 is then on standard error.
int uap_ioctl(unsigned char* buffer, int* size, int bufferSize);
