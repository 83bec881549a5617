#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include "commands/mCmd.h"
#include "platform/BlockDevice.h"
#include "platform/Node.h"
#include "platform/Uninterrupted.h"

namespace {

constexpr char kNotInserted[] = "Device not inserted";
constexpr char kCannotOpen[] = "Failed to open Device ";
constexpr char kNoInformation[] = "Failed to get Device Information for ";
constexpr char kNotOpen[] = "Device is not open";
constexpr char kCannotClose[] = "Failed to close Device ";
constexpr char kReadInvalid[] = "Device is not properly opened, file descriptor is invalid";
constexpr char kWriteInvalid[] = "Device is not proprely opened, file descriptor is invalid";
constexpr char kReadOnly[] = "Device is Read-Only declared";
constexpr char kNoStartBlock[] = "Startblock does not Exist on Device";
constexpr char kNoEndBlock[] = "Endblock does not exist on Device";
constexpr char kNoSpace[] = "Not Enough Memory to save read Data";
constexpr char kNoData[] = "Number of Bytes to Read overrides internal Memory";
constexpr char kCannotSeek[] = "Error Seeking on Device: ";
constexpr char kCannotRead[] = "Error Reading on Device: ";
constexpr char kCannotWrite[] = "Error Writing on Device: ";

// Devices with more blocks are not checked against their size.
constexpr std::int64_t kCheckedBlocks = std::int64_t{1} << 32;

DeviceResult failure(const char* text) {
    return mCmd::create_deverror(text, ProcessResponse::kGenericError);
}

/// Goes on after a part, until the device has no more to give or to take: then that is how much it was.
template <typename Move>
ssize_t moveAll(std::size_t length, const Move& move) {
    std::size_t done = 0;
    do {
        const ssize_t moved = System::uninterrupted([&] { return move(done, length - done); });
        if (moved < 0 && done == 0)
            return -1;
        if (moved <= 0)
            break;
        done += static_cast<std::size_t>(moved);
    } while (done < length);
    return static_cast<ssize_t>(done);
}

} // namespace

mCmd::Handle::Handle(int type, std::string path, bool writable)
    : m_type(type), m_path(std::move(path)), m_writable(writable) {}

bool mCmd::Handle::isInserted() const {
    return ::access(m_path.c_str(), F_OK) == 0;
}

DeviceResult mCmd::Handle::open() {
    if (!isInserted()) {
        m_device.reset();
        return failure(kNotInserted);
    }
    if (m_device) {
        // One that could not be looked at when it was opened may be now; it is open either way.
        if (m_status.st_blksize == 0)
            prepareStatInfo();
        return {};
    }
    m_device = System::openBlockDevice(m_path.c_str(), m_writable ? O_RDWR : O_RDONLY);
    if (!m_device) {
        const int error = errno;
        return create_deverror(kCannotOpen + m_path + ": " + std::strerror(error), error);
    }
    return prepareStatInfo();
}

DeviceResult mCmd::Handle::prepareStatInfo() {
    m_status = {};
    if (!m_device)
        return failure(kNotOpen);
    if (const int error = System::blockDeviceStatus(m_device.get(), m_status); error != 0)
        return create_deverror(kNoInformation + m_path + ": " + std::strerror(error), error);
    return {};
}

DeviceResult mCmd::Handle::close() {
    if (!isInserted())
        return failure(kNotInserted);
    const int error = m_device.close();
    if (error != 0 && error != EBADF)
        return create_deverror(kCannotClose + m_path + ": " + std::strerror(error), error);
    return {};
}

/// The checks that come before a transfer, in their order, and what is to be moved.
DeviceResult mCmd::Handle::check(unsigned firstBlock, int blockCount, int space, bool writing,
                                 Extent& extent) {
    if (!isInserted())
        return failure(kNotInserted);
    struct stat status {};
    if (!System::nodeStatus(m_device.get(), status))
        return failure(writing ? kWriteInvalid : kReadInvalid);
    if (writing && !m_writable)
        return failure(kReadOnly);
    // A negative count is the large number that it was sent as; nothing here wraps.
    const std::int64_t wanted = static_cast<std::uint32_t>(blockCount);
    const auto blocks = static_cast<std::int64_t>(m_status.st_blocks);
    if (blocks < kCheckedBlocks) {
        if (firstBlock >= blocks)
            return failure(kNoStartBlock);
        if (firstBlock + wanted >= blocks)
            return failure(kNoEndBlock);
    }
    const std::int64_t length = m_status.st_blksize * wanted;
    if (space < 0 || space < length)
        return failure(writing ? kNoData : kNoSpace);
    extent.position = static_cast<std::uint32_t>(m_status.st_blksize) * firstBlock;
    extent.length = static_cast<std::size_t>(length);
    return {};
}

DeviceResult mCmd::Handle::seek(const Extent& extent) const {
    errno = 0;
    if (::lseek(m_device.get(), static_cast<off_t>(extent.position), SEEK_SET) ==
        static_cast<off_t>(extent.position))
        return {};
    return failure((kCannotSeek + std::string(std::strerror(errno))).c_str());
}

DeviceResult mCmd::Handle::read(unsigned& bytes, unsigned firstBlock, int blockCount, void* buffer,
                                int space) {
    Extent extent{};
    if (DeviceResult result = check(firstBlock, blockCount, space, false, extent); result.failed())
        return result;
    if (DeviceResult result = seek(extent); result.failed())
        return result;
    const ssize_t moved = moveAll(extent.length, [&](std::size_t done, std::size_t left) {
        return ::read(m_device.get(), static_cast<char*>(buffer) + done, left);
    });
    if (moved < 0)
        return failure((kCannotRead + std::string(std::strerror(errno))).c_str());
    bytes = static_cast<unsigned>(moved);
    return {};
}

DeviceResult mCmd::Handle::write(unsigned& bytes, unsigned firstBlock, int blockCount, void* buffer,
                                 int space) {
    Extent extent{};
    if (DeviceResult result = check(firstBlock, blockCount, space, true, extent); result.failed())
        return result;
    if (DeviceResult result = seek(extent); result.failed())
        return result;
    const ssize_t moved = moveAll(extent.length, [&](std::size_t done, std::size_t left) {
        return ::write(m_device.get(), static_cast<const char*>(buffer) + done, left);
    });
    if (moved < 0)
        return failure((kCannotWrite + std::string(std::strerror(errno))).c_str());
    bytes = static_cast<unsigned>(moved);
    return {};
}
