#include "commands/DCmd.h"

#include <cstdint>
#include <memory>

#include "core/CRC.h"
#include "core/ProcessResponseAscii.h"
#include "core/TokenText.h"
#include "wire/BigEndian.h"

namespace {

constexpr int kChecksum = 9;
constexpr int kRequestLength = 12;
constexpr std::size_t kTokens = 5;
constexpr char kChecksumWord[] = "cksum";
constexpr std::size_t kResultBytes = 4;

constexpr unsigned char kLinear = 0;
constexpr unsigned char kSegmented = 1;

constexpr std::uint32_t kAddressError = 0x0B000001;
constexpr std::uint32_t kSizeError = 0x0B000002;

constexpr char kUnexpectedSubCommand[] = "Unexpected byte at position D2 of 'D' command, '9' expected";
constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kInvalidSubCommand[] = "Invalid subcommand";
constexpr char kNoMemory[] = "no memory available to calculate CRC over";
constexpr char kNotImplemented[] = "segmented memory type (1) not implemented";
constexpr char kUnknownType[] = "unknown memory type %d";
constexpr char kAddressTooLarge[] = "memory address too large";
constexpr char kSizeTooLarge[] = "size parameter too large";
constexpr char kSumTooLarge[] = "offset + size exceed allocated memory size";
constexpr char kSizeTooSmall[] = "length paramater too small";
constexpr char kNoTable[] = "Memory allocation failure";

ProcessResponse* genericError(const char* text) {
    return new ProcessResponse(ProcessResponse::kGenericError, "%s", text);
}

} // namespace

System::Mutex DCmd::s_singleton_mutex(System::Mutex::Normal);

DCmd* DCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static DCmd* const instance = new DCmd;
    return instance;
}

DCmd::DCmd() : AbstractCmd('D', "diag", true) {}

ProcessResponse* DCmd::process(std::vector<unsigned char>* request) {
    if (tavrin_getCommand(request) != kChecksum)
        return genericError(kUnexpectedSubCommand);
    if (tavrin_getRequestLen(request) != kRequestLength)
        return genericError(kInvalidLength);
    std::vector<unsigned char> result(kResultBytes);
    ProcessResponse* response =
        processData((*request)[3], bigEndian32(*request, 4), bigEndian32(*request, 8), result);
    return tavrin_answer(request, response, result);
}

ProcessResponse* DCmd::process(std::vector<std::vector<char>>& tokens) {
    if (tokens.size() != kTokens)
        return genericError(kInvalidLength);
    if (!beginsWith(tokens[1], kChecksumWord))
        return genericError(kInvalidSubCommand);
    std::vector<unsigned char> result(kResultBytes);
    ProcessResponse* response = processData(static_cast<unsigned char>(ascii_getInt(tokens[2])),
                                            static_cast<unsigned int>(ascii_getInt(tokens[3])),
                                            static_cast<unsigned int>(ascii_getInt(tokens[4])), result);
    return ascii_answer(response, std::string(kChecksumWord) + " " + ascii_buildBase64String(result));
}

ProcessResponse* DCmd::processData(unsigned char memType, unsigned int offset, unsigned int length,
                                   std::vector<unsigned char>& result) {
    const unsigned char* buffer = getGlobalBuffer();
    const unsigned int size = getGlobalBufferSize();
    if (buffer == nullptr)
        return new ProcessResponse(kAddressError, "%s", kNoMemory);
    if (memType == kSegmented)
        return genericError(kNotImplemented);
    if (memType != kLinear)
        return new ProcessResponse(ProcessResponse::kGenericError, kUnknownType, memType);
    if (offset >= size)
        return new ProcessResponse(kAddressError, "%s", kAddressTooLarge);
    if (length >= size)
        return new ProcessResponse(kSizeError, "%s", kSizeTooLarge);
    // Both are below the buffer's size, so their sum does not wrap.
    if (offset + length >= size)
        return new ProcessResponse(kSizeError, "%s", kSumTooLarge);
    unsigned int checksum = 0;
    const unsigned int error = System::CRC::calc(buffer + offset, length, &checksum);
    if (error == System::CRC::kTooShort)
        return new ProcessResponse(kSizeError, "%s", kSizeTooSmall);
    if (error != 0)
        return new ProcessResponse(kSizeError, "%s", kNoTable);
    putBigEndian32(result, 0, checksum);
    return new ProcessResponse(ProcessResponse::kSuccess);
}
