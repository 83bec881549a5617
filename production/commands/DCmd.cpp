#include "commands/DCmd.h"

#include <cstdint>

#include "commands/SharedTexts.h"
#include "core/CRC.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

constexpr int kChecksum = 9;
constexpr int kRequestLength = 12;
constexpr std::size_t kTokens = 5;
constexpr char kChecksumWord[] = "cksum";
constexpr std::size_t kResultBytes = 4;

constexpr unsigned char kLinear = 0;
constexpr unsigned char kSegmented = 1;

enum Code : std::uint32_t {
    kAddressError = 0x0B000001,
    kSizeError = 0x0B000002,
};

constexpr char kUnexpectedSubCommand[] = "Unexpected byte at position D2 of 'D' command, '9' expected";
constexpr char kInvalidSubCommand[] = "Invalid subcommand";
constexpr char kNoMemory[] = "no memory available to calculate CRC over";
constexpr char kNotImplemented[] = "segmented memory type (1) not implemented";
constexpr char kUnknownType[] = "unknown memory type %d";
constexpr char kAddressTooLarge[] = "memory address too large";
constexpr char kSizeTooLarge[] = "size parameter too large";
constexpr char kSumTooLarge[] = "offset + size exceed allocated memory size";
constexpr char kSizeTooSmall[] = "length paramater too small";
constexpr char kNoTable[] = "Memory allocation failure";

} // namespace

System::Mutex DCmd::s_singleton_mutex(System::Mutex::Normal);

DCmd* DCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new DCmd; });
}

DCmd::DCmd() : AbstractCmd('D', "diag", true) {}

Answer DCmd::run(const std::vector<unsigned char>* request) {
    if (tavrin_getCommand(request) != kChecksum)
        return genericError(kUnexpectedSubCommand);
    if (tavrin_getRequestLen(request) != kRequestLength)
        return genericError(SharedTexts::kInvalidLength);
    std::vector<unsigned char> result(kResultBytes);
    return tavrin_answer(
        request, checksum((*request)[3], bigEndian32(*request, 4), bigEndian32(*request, 8), result),
        result);
}

Answer DCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return genericError(SharedTexts::kInvalidLength);
    if (!beginsWith(tokens[1], kChecksumWord))
        return genericError(kInvalidSubCommand);
    std::vector<unsigned char> result(kResultBytes);
    return ascii_answer(
        checksum(static_cast<unsigned char>(ascii_getInt(tokens[2])),
                 static_cast<unsigned int>(ascii_getInt(tokens[3])),
                 static_cast<unsigned int>(ascii_getInt(tokens[4])), result),
        [&] { return std::string(kChecksumWord) + " " + ascii_buildBase64String(result); });
}

ProcessResponse* DCmd::processData(unsigned char memType, unsigned int offset, unsigned int length,
                                   std::vector<unsigned char>& result) {
    return checksum(memType, offset, length, result).release();
}

Answer DCmd::checksum(unsigned char memType, unsigned int offset, unsigned int length,
                      std::vector<unsigned char>& result) {
    const unsigned char* buffer = getGlobalBuffer();
    const unsigned int size = getGlobalBufferSize();
    if (buffer == nullptr)
        return failure(kAddressError, kNoMemory);
    if (memType == kSegmented)
        return genericError(kNotImplemented);
    if (memType != kLinear)
        return genericError(kUnknownType, memType);
    if (offset >= size)
        return failure(kAddressError, kAddressTooLarge);
    if (length >= size)
        return failure(kSizeError, kSizeTooLarge);
    // Both are below the buffer's size, so their sum does not wrap.
    if (offset + length >= size)
        return failure(kSizeError, kSumTooLarge);
    unsigned int sum = 0;
    const unsigned int error = System::CRC::calc(buffer + offset, length, &sum);
    if (error == System::CRC::kTooShort)
        return failure(kSizeError, kSizeTooSmall);
    if (error != 0)
        return failure(kSizeError, kNoTable);
    putBigEndian32(result, 0, sum);
    return success();
}
