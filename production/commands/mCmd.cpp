#include "commands/mCmd.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "commands/SharedTexts.h"
#include "core/Diagnostics.h"
#include "core/TokenNumber.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

constexpr int kGenericDevice = 176;
constexpr int kHardDisk = 177;
constexpr int kOpticalDevice = 178;
constexpr int kMassStorage = 179;
constexpr int kSdCard = 180;
constexpr unsigned char kLastSdCard = 1;

/// An operation in both protocols, and what runs it: one of the two functions.
struct Operation {
    int code;
    int frameLength;
    const char* word;
    std::size_t tokens;
    Answer (mCmd::*onDevice)(mCmd::Handle* handle);
    Answer (mCmd::*transfer)(mCmd::Handle* handle, unsigned firstBlock, unsigned blockCount,
                             unsigned offset, std::vector<unsigned char>& count);
};
constexpr Operation kOperations[] = {
    {1, 5, "open", 4, &mCmd::open, nullptr},
    {2, 5, "close", 4, &mCmd::close, nullptr},
    {3, 17, "read", 7, nullptr, &mCmd::read},
    {4, 17, "write", 7, nullptr, &mCmd::write},
};

constexpr int kShortestRequest = 5;
constexpr std::size_t kFewestTokens = 4;
constexpr std::size_t kFirstBlockAt = 5;
constexpr std::size_t kBlockCountAt = 9;
constexpr std::size_t kOffsetAt = 13;

constexpr int kError = ProcessResponse::kGenericError;

constexpr char kNotAvailable[] = "BlockDevice %s is not available";
constexpr char kInvalidSubCommand[] = "Invalid Subcommand";
constexpr char kWithErrorCode[] = "%s, errorCode: %d";
constexpr char kOffsetOutOfRange[] = "Memoryoffset out of Range";

constexpr char kNoDevice[] = "No Device inserted";
constexpr char kNotRegistered[] = "Probably due to failures no such Device was registered";
constexpr char kUnknownType[] = "Device Type is unknown";
constexpr char kNoSuchId[] = "Device ID does not exist";
constexpr char kIdNotRegistered[] = "Device Id is not registered";

DeviceResult deviceFailure(const char* text) {
    return mCmd::create_deverror(text, kError);
}

Answer responseTo(const DeviceResult& result) {
    if (!result.failed())
        return success();
    return genericError(kWithErrorCode, result.message.c_str(), result.code);
}

/// Null when there is none that fits.
template <typename Fits>
const Operation* findOperation(Fits fits) {
    const auto* const found = std::find_if(std::begin(kOperations), std::end(kOperations), fits);
    return found == std::end(kOperations) ? nullptr : found;
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
    std::vector<unsigned char> bytes(sizeof(std::uint32_t));
    putBigEndian32(bytes, 0, number);
    return bytes;
}

} // namespace

System::Mutex mCmd::s_singleton_mutex(System::Mutex::Normal);

mCmd* mCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new mCmd; });
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
        printDiagnostic(kNotAvailable, path);
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
            return deviceFailure(kNoDevice);
        return deviceFailure(isFixed ? kNotRegistered : kUnknownType);
    }
    const auto found = devices->second.find(id);
    if (found != devices->second.end()) {
        *handle = found->second;
        return {};
    }
    if ((type == kSdCard && id > kLastSdCard) || (type == kOpticalDevice && id != 0) || isFixed)
        return deviceFailure(kNoSuchId);
    return deviceFailure(isRemovable ? kNoDevice : kIdNotRegistered);
}

Answer mCmd::open(Handle* handle) {
    return responseTo(handle->open());
}

Answer mCmd::close(Handle* handle) {
    return responseTo(handle->close());
}

Answer mCmd::read(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
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

Answer mCmd::write(Handle* handle, unsigned firstBlock, unsigned blockCount, unsigned offset,
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

Answer mCmd::run(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortestRequest)
        return genericError(SharedTexts::kInvalidLength);
    Handle* handle = nullptr;
    if (const DeviceResult result = device(&handle, (*request)[2], (*request)[3]);
        result.failed() || handle == nullptr)
        return failure(static_cast<unsigned>(result.code), "%s", result.message.c_str());
    const Operation* const operation =
        findOperation([&](const Operation& known) { return (*request)[4] == known.code; });
    if (operation == nullptr)
        return genericError(kInvalidSubCommand);
    if (length != operation->frameLength)
        return genericError(SharedTexts::kInvalidLength);
    std::vector<unsigned char> count;
    if (operation->transfer == nullptr)
        return tavrin_answer(request, (this->*operation->onDevice)(handle), count);
    return tavrin_answer(request,
                         (this->*operation->transfer)(handle, bigEndian32(*request, kFirstBlockAt),
                                                      bigEndian32(*request, kBlockCountAt),
                                                      bigEndian32(*request, kOffsetAt), count),
                         count);
}

Answer mCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < kFewestTokens)
        return genericError(SharedTexts::kInvalidLength);
    Handle* handle = nullptr;
    if (const DeviceResult result = device(&handle, byteIn(tokens[2]), byteIn(tokens[3]));
        result.failed() || handle == nullptr)
        return failure(static_cast<unsigned>(result.code), "%s", result.message.c_str());
    const Operation* const operation =
        findOperation([&](const Operation& known) { return beginsWith(tokens[1], known.word); });
    if (operation == nullptr)
        return genericError(kInvalidSubCommand);
    if (tokens.size() != operation->tokens)
        return genericError(SharedTexts::kInvalidLength);
    if (operation->transfer == nullptr)
        return (this->*operation->onDevice)(handle);
    std::vector<unsigned char> count;
    return ascii_answer((this->*operation->transfer)(handle, numberIn(tokens[4]), numberIn(tokens[5]),
                                                     numberIn(tokens[6]), count),
                        [&] { return ascii_buildBase64String(count); });
}
