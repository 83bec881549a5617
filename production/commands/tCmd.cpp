#include "commands/tCmd.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <utility>

#include "commands/RequestSize.h"
#include "commands/SharedTexts.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

constexpr unsigned int kMostBytes = 244;
constexpr std::size_t kTagHeader = 3;      // tag and checksum ahead of the bytes of a binary answer
constexpr std::size_t kChecksumHeader = 1; // the checksum ahead of the bytes of an ASCII answer

constexpr int kReadLength = 8;
constexpr int kTaggedReadLength = 10;
constexpr int kWriteHeader = 8;
constexpr int kCheckedWriteHeader = 11;
constexpr std::size_t kCountAt = 3;
constexpr std::size_t kAddressAt = 4;
constexpr std::size_t kTagAt = 8;
constexpr std::size_t kChecksumAt = 10;

constexpr RequestSize kAnyLine = {
    5, kNoLimit, "Command length error, command must contain at least 5 fields, received fields: %d"};
constexpr RequestSize kWriteLine = {
    6, kNoLimit,
    "Command length error,write commands must contain at least 6 fields, received fields:%d"};
constexpr RequestSize kCheckedWriteLine = {
    7, kNoLimit,
    "Command length error, write 8bitcrc commands  must contain at least 7 fields,received fields: %d"};
constexpr std::size_t kLongestDataToken = 255;
constexpr char kRead[] = "read";
constexpr char kWrite[] = "write";
constexpr char kChecked[] = "8bitcrc";

enum Code : std::uint32_t {
    kMalformed = 0x08001000,
    kOutOfBounds = 0x08000100,
    kWrongChecksum = 0x08000400,
};

constexpr char kNoBuffer[] = "Allocation Error";
constexpr char kNotSupported[] = "Command not supported";
// The three ways to say it tell where the refusal comes from.
constexpr char kTooManyRead[] = "Number of Accessesout of Bounds [(%d*%d => %d) > 244]";
constexpr char kTooManyWritten[] = "Number of Accesses outof Bounds [(%d*%d => %d) > 244]";
constexpr char kTooManyWrittenAscii[] = "Number of Accesses out of Bounds [(%d*%d => %d) > 244]";
constexpr char kMisaligned[] = "Alignment Error for Start Address";
constexpr char kOutOfLimits[] = "Accessing Memory out of Limits";
constexpr char kTooFewBytes[] = "Accesslength: %d + Commandlength: %d > Commandlength: %d";
constexpr char kUnknownCombination[] = "unknown command combination param1:'%s', param2: %s";
constexpr char kBadData[] = "Number of Data Bytes must be in Range [%d,255], received: %d";
constexpr char kChecksumDiffers[] = "Invalid checksum in write request: 0x%02X ";

unsigned char sumOf(const unsigned char* bytes, std::size_t count) {
    return static_cast<unsigned char>(std::accumulate(bytes, bytes + count, 0U));
}

/// What the binary codes and the ASCII keywords stand for.
struct Access {
    const char* operation;
    const char* keyword;
    int code;
    unsigned char width;
    bool withChecksum;
};

constexpr Access kAccesses[] = {
    {kRead, "8bit", 0, 1, false},   {kWrite, "8bit", 1, 1, false},  {kRead, "16bit", 2, 2, false},
    {kWrite, "16bit", 3, 2, false}, {kRead, "32bit", 4, 4, false},  {kWrite, "32bit", 5, 4, false},
    {kRead, kChecked, 6, 1, true},  {kWrite, kChecked, 7, 1, true},
};

bool isRead(const Access& access) {
    return access.operation == kRead;
}

const Access* findAccess(int code) {
    for (const Access& access : kAccesses)
        if (access.code == code)
            return &access;
    return nullptr;
}

const Access* findAccess(const std::string& operation, const std::string& keyword) {
    for (const Access& access : kAccesses)
        if (operation == access.operation && keyword == access.keyword)
            return &access;
    return nullptr;
}

} // namespace

System::Mutex tCmd::s_singleton_mutex(System::Mutex::Normal);

tCmd* tCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new tCmd; });
}

tCmd::tCmd() : AbstractCmd('t', "memory", true) {}

Answer tCmd::run(const std::vector<unsigned char>* request) {
    if (getGlobalBuffer() == nullptr)
        return failure(kOutOfBounds, kNoBuffer);
    std::vector<unsigned char> data;
    Answer result = runBinary(request, &data);
    if (failed(*result) && result->code != kWrongChecksum)
        return result;
    auto answer = std::make_unique<ProcessResponseTavrin>(result->code, "");
    tavrin_fillDefaultResponse(request, answer.get(), data);
    return answer;
}

Answer tCmd::runBinary(const std::vector<unsigned char>* request, std::vector<unsigned char>* data) {
    const Access* access = findAccess(tavrin_getCommand(request));
    if (access == nullptr)
        return failure(kMalformed, kNotSupported);
    if (!isRead(*access))
        return write(request, data, access->width, access->withChecksum, 0);
    if (tavrin_getRequestLen(request) != (access->withChecksum ? kTaggedReadLength : kReadLength))
        return failure(kMalformed, SharedTexts::kInvalidLength);
    const unsigned short tag = access->withChecksum ? bigEndian16(*request, kTagAt) : 0;
    return read(data, access->width, (*request)[kCountAt], bigEndian32(*request, kAddressAt),
                access->withChecksum, tag);
}

/// Null when so many bytes may be moved there.
Answer tCmd::checkPlace(unsigned int total, unsigned char width, unsigned int address) const {
    if (address % width != 0)
        return failure(kMalformed, kMisaligned);
    if (std::uint64_t{total} + address >= getGlobalBufferSize())
        return failure(kOutOfBounds, kOutOfLimits);
    return nullptr;
}

Answer tCmd::readBehind(std::size_t header, std::vector<unsigned char>* data, unsigned char width,
                        unsigned char count, unsigned int address, unsigned char& checksum) {
    const unsigned int total = static_cast<unsigned int>(width) * count;
    if (total > kMostBytes)
        return failure(kOutOfBounds, kTooManyRead, count, width, static_cast<int>(total));
    if (Answer refusal = checkPlace(total, width, address))
        return refusal;
    const unsigned char* source = getGlobalBuffer() + address;
    data->assign(header + total, 0);
    std::copy_n(source, total, data->begin() + static_cast<std::ptrdiff_t>(header));
    checksum = sumOf(source, total);
    return success();
}

Answer tCmd::read(std::vector<unsigned char>* data, unsigned char width, unsigned char count,
                  unsigned int address, bool withChecksum, unsigned short tag) {
    unsigned char checksum = 0;
    Answer result = readBehind(withChecksum ? kTagHeader : 0, data, width, count, address, checksum);
    if (withChecksum && !failed(*result)) {
        putBigEndian16(*data, 0, tag);
        (*data)[2] = checksum;
    }
    return result;
}

Answer tCmd::write(const std::vector<unsigned char>* request, std::vector<unsigned char>* data,
                   unsigned char width, bool withChecksum, unsigned short) {
    const int header = withChecksum ? kCheckedWriteHeader : kWriteHeader;
    const int length = tavrin_getRequestLen(request);
    if (length < header)
        return failure(kMalformed, SharedTexts::kInvalidLength);
    const unsigned char count = (*request)[kCountAt];
    const int total = width * count;
    if (static_cast<unsigned int>(total) > kMostBytes)
        return failure(kOutOfBounds, kTooManyWritten, count, width, total);
    const std::uint32_t address = bigEndian32(*request, kAddressAt);
    if (Answer refusal = checkPlace(static_cast<unsigned int>(total), width, address))
        return refusal;
    if (header + total > length)
        return failure(kMalformed, kTooFewBytes, total, header, length);
    const unsigned char* source = request->data() + header;
    std::memcpy(getGlobalBuffer() + address, source, static_cast<std::size_t>(total));
    if (!withChecksum)
        return success();
    const unsigned char checksum = sumOf(source, static_cast<std::size_t>(total));
    *data = {0, 0, checksum};
    const bool matches = (*request)[kChecksumAt] == checksum;
    return matches ? success() : failure(kWrongChecksum);
}

Answer tCmd::run(const std::vector<std::vector<char>>& tokens) {
    const int fields = static_cast<int>(tokens.size());
    if (Answer refusal = checkLength(kAnyLine, fields))
        return refusal;
    const std::string operation = tokenText(tokens[1]);
    const std::string keyword = tokenText(tokens[2]);
    if (operation == kWrite) {
        if (Answer refusal = checkLength(kWriteLine, fields))
            return refusal;
        if (keyword == kChecked)
            if (Answer refusal = checkLength(kCheckedWriteLine, fields))
                return refusal;
    }
    const Access* access = findAccess(operation, keyword);
    if (access == nullptr)
        return genericError(kUnknownCombination, operation.c_str(), keyword.c_str());
    // Without a buffer nothing lies within its limits, and that is the answer.
    std::vector<unsigned char> data;
    if (!isRead(*access))
        return writeAscii(tokens, &data, access->width, access->withChecksum);
    return readAscii(&data, access->width, static_cast<unsigned char>(ascii_getInt(tokens[3])),
                     static_cast<unsigned int>(ascii_getInt(tokens[4])), access->withChecksum);
}

Answer tCmd::readAscii(std::vector<unsigned char>* data, unsigned char width, unsigned char count,
                       unsigned int address, bool withChecksum) {
    unsigned char checksum = 0;
    Answer result =
        readBehind(withChecksum ? kChecksumHeader : 0, data, width, count, address, checksum);
    if (withChecksum && !failed(*result))
        data->front() = checksum;
    return ascii_answer(std::move(result), [this, data] { return ascii_buildHexString(*data, true); });
}

Answer tCmd::writeAscii(const std::vector<std::vector<char>>& tokens, std::vector<unsigned char>* data,
                        unsigned char width, bool withChecksum) {
    const auto count = static_cast<unsigned char>(ascii_getInt(tokens[3]));
    const auto address = static_cast<unsigned int>(ascii_getInt(tokens[4]));
    const int total = width * count;
    if (static_cast<unsigned int>(total) > kMostBytes)
        return failure(kOutOfBounds, kTooManyWrittenAscii, count, width, total);
    if (Answer refusal = checkPlace(static_cast<unsigned int>(total), width, address))
        return refusal;
    const std::vector<char>& bytes = tokens[5];
    if (bytes.size() < static_cast<std::size_t>(total) || bytes.size() > kLongestDataToken)
        return genericError(kBadData, total, static_cast<int>(bytes.size()));
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
    data->assign(first, first + total);
    std::copy(data->begin(), data->end(), getGlobalBuffer() + address);
    if (!withChecksum)
        return success();
    const int expected = ascii_getInt(tokens[6]);
    if (expected != sumOf(data->data(), data->size()))
        return genericError(kChecksumDiffers, static_cast<unsigned>(expected));
    return success();
}
