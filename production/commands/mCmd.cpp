#include "commands/mCmd.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "core/Diagnostics.h"
#include "core/ProcessResponseAscii.h"
#include "core/TokenNumber.h"
#include "core/TokenText.h"
#include "platform/BlockDevice.h"
#include "platform/Node.h"
#include "wire/BigEndian.h"

namespace {

constexpr int kGenericDevice = 176;
constexpr int kHardDisk = 177;
constexpr int kOpticalDevice = 178;
constexpr int kMassStorage = 179;
constexpr int kSdCard = 180;
constexpr unsigned char kLastSdCard = 1;

enum Operation : unsigned char { Open = 1, Close = 2, Read = 3, Write = 4 };

constexpr int kShortestRequest = 5;
constexpr int kTransferLength = 17;
constexpr std::size_t kFirstBlockAt = 5;
constexpr std::size_t kBlockCountAt = 9;
constexpr std::size_t kOffsetAt = 13;
constexpr std::size_t kTokens = 4;
constexpr std::size_t kTransferTokens = 7;
constexpr std::size_t kCountBytes = 4;

constexpr int kError = ProcessResponse::kGenericError;

constexpr char kNotAvailable[] = "BlockDevice ";
constexpr char kNotAvailableEnd[] = " is not available";
constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kInvalidSubCommand[] = "Invalid Subcommand";
constexpr char kWithErrorCode[] = "%s, errorCode: %d";
constexpr char kOffsetOutOfRange[] = "Memoryoffset out of Range";

constexpr char kNoDevice[] = "No Device inserted";
constexpr char kNotRegistered[] = "Probably due to failures no such Device was registered";
constexpr char kUnknownType[] = "Device Type is unknown";
constexpr char kNoSuchId[] = "Device ID does not exist";
constexpr char kIdNotRegistered[] = "Device Id is not registered";

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
    return mCmd::create_deverror(text, kError);
}

ProcessResponse* genericError(const char* text) {
    return new ProcessResponse(ProcessResponse::kGenericError, "%s", text);
}

ProcessResponse* responseTo(const DeviceResult& result) {
    if (!result.failed())
        return new ProcessResponse(ProcessResponse::kSuccess);
    return new ProcessResponse(ProcessResponse::kGenericError, kWithErrorCode, result.message.c_str(),
                               result.code);
}

/// Calls a transfer until no signal interrupts it.
template <typename Transfer>
ssize_t uninterrupted(Transfer transfer) {
    ssize_t moved = 0;
    do {
        moved = transfer();
    } while (moved < 0 && errno == EINTR);
    return moved;
}

/// A device type or id; what no byte holds is the highest one, which none has.
unsigned char byteIn(const std::vector<char>& token) {
    constexpr unsigned char kNone = std::numeric_limits<unsigned char>::max();
    return static_cast<unsigned char>(tokenNumberUpTo(token, kNone).value_or(kNone));
}

/// A place or a count; what 32 bits do not hold is the highest one, which is out of every range.
unsigned numberIn(const std::vector<char>& token) {
    constexpr unsigned kBeyond = std::numeric_limits<unsigned>::max();
    return tokenNumberUpTo(token, kBeyond).value_or(kBeyond);
}

std::vector<unsigned char> asFourBytes(unsigned number) {
    std::vector<unsigned char> bytes(kCountBytes);
    putBigEndian32(bytes, 0, number);
    return bytes;
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
    if (m_device)
        return {};
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
    const ssize_t moved = uninterrupted([&] { return ::read(m_device.get(), buffer, extent.length); });
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
    const ssize_t moved = uninterrupted([&] { return ::write(m_device.get(), buffer, extent.length); });
    if (moved < 0)
        return failure((kCannotWrite + std::string(std::strerror(errno))).c_str());
    bytes = static_cast<unsigned>(moved);
    return {};
}

System::Mutex mCmd::s_singleton_mutex(System::Mutex::Normal);

mCmd* mCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static mCmd* const instance = new mCmd;
    return instance;
}

mCmd::mCmd() : AbstractCmd('m', "blockdev", true) {
    addHardDisk(0, "/dev/sda0");
    addHardDisk(1, "/dev/sdb0");
    addDevice(kOpticalDevice, 0, "/dev/cd0", false);
    addDevice(kMassStorage, 0, "/dev/umass/umass0", true);
    addDevice(kSdCard, 0, "/dev/mnand0", true);
    addDevice(kSdCard, 1, "/dev/fs0", true);
}

void mCmd::addHardDisk(unsigned id, const char* path) {
    if (::access(path, F_OK) == 0)
        addDevice(kHardDisk, id, path, false);
    else
        printDiagnostic(string_format("%s%s%s", kNotAvailable, path, kNotAvailableEnd));
}

void mCmd::addDevice(int type, unsigned id, const char* path, bool writable) {
    if (m_devices[type].emplace(id, new Handle(type, path, writable)).second)
        m_positions.emplace(path, std::make_pair(type, id));
}

std::string mCmd::getTypeName(int type) {
    switch (type) {
        case kGenericDevice:
            return "Generic Device";
        case kHardDisk:
            return "Hard Disk";
        case kOpticalDevice:
            return "Optical Device";
        case kMassStorage:
            return "Mass Storage Device";
        case kSdCard:
            return "SD-Card";
        default:
            return "Unkown Devicetype";
    }
}

DeviceResult mCmd::create_deverror(std::string message, int code) {
    return {code, std::move(message)};
}

DeviceResult mCmd::device(Handle** handle, unsigned char type, unsigned char id) {
    const bool isRemovable = type == kOpticalDevice || type == kMassStorage || type == kSdCard;
    const bool isFixed = type == kGenericDevice || type == kHardDisk;
    const auto devices = m_devices.find(type);
    if (devices == m_devices.end()) {
        if (isRemovable)
            return failure(kNoDevice);
        return failure(isFixed ? kNotRegistered : kUnknownType);
    }
    const auto found = devices->second.find(id);
    if (found != devices->second.end()) {
        *handle = found->second;
        return {};
    }
    if ((type == kSdCard && id > kLastSdCard) || (type == kOpticalDevice && id != 0) || isFixed)
        return failure(kNoSuchId);
    return failure(isRemovable ? kNoDevice : kIdNotRegistered);
}

ProcessResponse* mCmd::open(Handle* handle) {
    return responseTo(handle->open());
}

ProcessResponse* mCmd::close(Handle* handle) {
    return responseTo(handle->close());
}

ProcessResponse* mCmd::read(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
                            std::vector<unsigned char>& count) {
    const unsigned size = getGlobalBufferSize();
    if (offset >= size)
        return genericError(kOffsetOutOfRange);
    unsigned bytes = 0;
    const DeviceResult result =
        handle->read(bytes, firstBlock, static_cast<int>(blockCount), getGlobalBuffer() + offset,
                     static_cast<int>(size - offset));
    if (!result.failed())
        count = asFourBytes(bytes);
    return responseTo(result);
}

ProcessResponse* mCmd::write(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
                             std::vector<unsigned char>& count) {
    constexpr int kNoSpaceAtAll = -1;
    const unsigned size = getGlobalBufferSize();
    const bool isInside = offset <= size && size != 0;
    unsigned bytes = 0;
    const DeviceResult result = handle->write(
        bytes, firstBlock, static_cast<int>(blockCount), isInside ? getGlobalBuffer() + offset : nullptr,
        isInside ? static_cast<int>(size - offset) : kNoSpaceAtAll);
    if (!result.failed())
        count = asFourBytes(bytes);
    return responseTo(result);
}

ProcessResponse* mCmd::process(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortestRequest)
        return genericError(kInvalidLength);
    Handle* handle = nullptr;
    if (const DeviceResult result = device(&handle, (*request)[2], (*request)[3]);
        result.failed() || handle == nullptr)
        return new ProcessResponse(static_cast<unsigned>(result.code), "%s", result.message.c_str());
    const unsigned char operation = (*request)[4];
    if (operation < Open || operation > Write)
        return genericError(kInvalidSubCommand);
    const bool isTransfer = operation == Read || operation == Write;
    if (length != (isTransfer ? kTransferLength : kShortestRequest))
        return genericError(kInvalidLength);
    std::vector<unsigned char> count;
    ProcessResponse* result = nullptr;
    if (isTransfer) {
        const auto transfer = operation == Read ? &mCmd::read : &mCmd::write;
        result = (this->*transfer)(handle, bigEndian32(*request, kFirstBlockAt),
                                   bigEndian32(*request, kBlockCountAt),
                                   bigEndian32(*request, kOffsetAt), count);
    } else {
        result = operation == Open ? open(handle) : close(handle);
    }
    return tavrin_answer(request, result, count);
}

ProcessResponse* mCmd::process(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < kTokens)
        return genericError(kInvalidLength);
    Handle* handle = nullptr;
    const DeviceResult found = device(&handle, byteIn(tokens[2]), byteIn(tokens[3]));
    if (found.failed() || handle == nullptr)
        return new ProcessResponse(static_cast<unsigned>(found.code), "%s", found.message.c_str());
    const bool isOpen = beginsWith(tokens[1], "open");
    const bool isRead = beginsWith(tokens[1], "read");
    if (isOpen || beginsWith(tokens[1], "close")) {
        if (tokens.size() != kTokens)
            return genericError(kInvalidLength);
        return isOpen ? open(handle) : close(handle);
    }
    if (!isRead && !beginsWith(tokens[1], "write"))
        return genericError(kInvalidSubCommand);
    if (tokens.size() != kTransferTokens)
        return genericError(kInvalidLength);
    std::vector<unsigned char> count;
    const auto transfer = isRead ? &mCmd::read : &mCmd::write;
    ProcessResponse* result =
        (this->*transfer)(handle, numberIn(tokens[4]), numberIn(tokens[5]), numberIn(tokens[6]), count);
    return ascii_answer(result, ascii_buildBase64String(count));
}
