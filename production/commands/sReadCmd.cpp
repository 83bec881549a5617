#include "commands/sReadCmd.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <utility>

#include "commands/SharedTexts.h"
#include "commands/cReadCmd.h"
#include "core/BuildStamp.h"
#include "core/TokenText.h"
#include "platform/Node.h"
#include "runtime/OnlyObject.h"

namespace {

constexpr int kStatusLength = 2;
constexpr int kFileLength = 3;
constexpr unsigned char kStatusEcho = 0x2C;
constexpr std::size_t kEchoedBytes = 4;

constexpr unsigned kProduct = 0xA024;
constexpr std::size_t kPayloadBytes = 16;

constexpr char kRevision[] = "/dev/nvsku/rev";

/// A file that says who the unit is, and how it is asked for.
struct IdentityFile {
    int code;
    const char* prefix; ///< of a line's second token
    const char* path;
};
constexpr int kLineOnly = 0x100; // no frame can say it
constexpr IdentityFile kIdentityFiles[] = {
    {0x01, "01", "/mnt/app/img_ver.txt"},
    {0x02, "02", "/dev/nvsku/serial_num"},
    {kLineOnly, "03", "/mnt/app/version_info.txt"},
    {kLineOnly, "04", "/ifs/version_info.txt"},
};

constexpr char kTooLong[] = "Command 's': too long!";
constexpr char kUnsupported[] = "unsupported subcommand";
constexpr char kSentAgain[] = "Startup State sent but requested again";
constexpr char kConnectionCut[] = "Probaby due to connection cut";
constexpr char kCannotOpen[] = "Failed to open the /dev/nvsku/rev file";
constexpr char kCannotRead[] = "Could not read the /dev/nvsku/rev file";
constexpr char kCannotReadAscii[] = "Failed to read from /dev/nvsku/rev file";
constexpr char kTooLarge[] = "Revision does not Fit in 2 Bytes";

/// Reads on until the number at the beginning has ended,
/// or the node has. False when neither comes in time.
bool readNumber(int node, std::string& text) {
    constexpr char kBlanks[] = " \t\n\v\f\r";
    constexpr char kOfNumbers[] = "+-xX0123456789abcdefABCDEF";
    constexpr std::size_t kLongest = 4096;
    const auto deadline = std::chrono::steady_clock::now() + System::kLongestNodeWait;
    while (std::chrono::steady_clock::now() < deadline) {
        std::array<char, 256> part;
        const ssize_t count = System::readNode(node, part.data(), part.size());
        if (count <= 0)
            return count == 0;
        text.append(part.data(), static_cast<std::size_t>(count));
        text.erase(0, text.find_first_not_of(kBlanks));
        if (text.find_first_not_of(kOfNumbers) != std::string::npos || text.size() > kLongest)
            return true;
    }
    return false;
}

/// What a scan for "%X" makes of the text where a long has 32 bits: a number that has more counts as the
/// largest. False when there is no number.
bool scanHexadecimal(const std::string& text, std::uint32_t& number) {
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint32_t>::max();
    char* end = nullptr;
    errno = 0;
    const std::uint64_t scanned = std::strtoull(text.c_str(), &end, 16);
    if (end == text.c_str())
        return false;
    const bool isNegative = text.front() == '-' && errno != ERANGE;
    const std::uint64_t magnitude = isNegative ? 0 - scanned : scanned;
    const auto bits = static_cast<std::uint32_t>(std::min(magnitude, kLargest));
    number = isNegative && magnitude <= kLargest ? 0 - bits : bits;
    return true;
}

unsigned char packedDecimal(const char* digits) {
    // A blank in place of the first digit counts as 0.
    return static_cast<unsigned char>((digits[0] << 4) + (digits[1] - '0'));
}

void appendBuildTime(std::vector<unsigned char>& payload) {
    constexpr std::size_t kDay = 8, kMonth = 5, kYear = 2, kHour = 11, kMinute = 14;
    const char* stamp = getDateTimeString();
    for (const std::size_t position : {kDay, kMonth, kYear, kHour, kMinute})
        payload.push_back(packedDecimal(stamp + position));
}

} // namespace

std::uint16_t sReadCmd::kruversion = 0;
bool sReadCmd::kruversion_checked = false;
bool sReadCmd::startupSend = false;
System::Mutex sReadCmd::s_singleton_mutex(System::Mutex::Normal);

sReadCmd* sReadCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new sReadCmd; });
}

sReadCmd::sReadCmd() : AbstractCmd('s', "status", true) {}

ProcessResponse* sReadCmd::process(std::vector<unsigned char>* request) {
    return tavrin_getRequestLen(request) == kStatusLength ? sendStatusTavrin(request, Requested)
                                                          : sendFile(request).release();
}

Answer sReadCmd::sendFile(const std::vector<unsigned char>* request) {
    if (tavrin_getRequestLen(request) > kFileLength)
        return genericError(kTooLong);
    const int code = tavrin_getCommand(request);
    for (const IdentityFile& file : kIdentityFiles) {
        if (code != file.code)
            continue;
        // The content's frame echoes D3, which this request does not have. A refusal is left without.
        std::vector<unsigned char> echoed = *request;
        echoed.resize(kEchoedBytes);
        return cReadCmd::getInstance()->ReadFromFileBinary(&echoed, file.path);
    }
    return genericError(kUnsupported);
}

Answer sReadCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() == 1)
        return statusText();
    for (const IdentityFile& file : kIdentityFiles) {
        if (tokens.size() > 1 && beginsWith(tokens[1], file.prefix))
            return cReadCmd::getInstance()->ReadFromFileBase64(file.path);
    }
    return genericError(kUnsupported);
}

sReadCmd::Revision sReadCmd::readRevision() {
    const System::Descriptor node = System::openNode(kRevision, O_RDONLY);
    if (!node)
        return {RevisionRead::CannotOpen, 0};
    std::string text;
    std::uint32_t value = 0;
    if (!readNumber(node.get(), text) || !scanHexadecimal(text, value))
        return {RevisionRead::CannotRead, 0};
    return {RevisionRead::Ok, value};
}

void sReadCmd::readRevisionAhead() {
    if (!kruversion_checked)
        m_revisionAhead = readRevision();
}

/// Returns whether a status had been built before this one.
bool sReadCmd::noteStatusSent(Status status) {
    const bool sentBefore = startupSend;
    if (sentBefore && status == Startup) {
        tavrin_sendAsyncDebug(kSentAgain);
        tavrin_sendAsyncDebug(kConnectionCut);
    }
    startupSend = true;
    return sentBefore;
}

ProcessResponse* sReadCmd::sendStatusTavrin(std::vector<unsigned char>* request, Status status) {
    if (tavrin_getRequestLen(request) != kStatusLength)
        return failureIn<ProcessResponseTavrin>(genericError(SharedTexts::kInvalidLength)).release();
    std::vector<unsigned char> echoed = *request;
    echoed.resize(kEchoedBytes);
    echoed[2] = kStatusEcho;
    echoed[3] = noteStatusSent(status) ? 1 : 0;
    // Whoever answers a status that fails echoes the request: that becomes the same.
    *request = echoed;
    return statusFrame(echoed).release();
}

Answer sReadCmd::statusFrame(const std::vector<unsigned char>& echoed) {
    if (Answer refusal = findRevision())
        return failureIn<ProcessResponseTavrin>(refusal);
    std::vector<unsigned char> payload;
    payload.reserve(kPayloadBytes);
    appendBuildTime(payload);
    for (const unsigned number : {kProduct, unsigned{kruversion}}) {
        payload.push_back(static_cast<unsigned char>(number >> 8));
        payload.push_back(static_cast<unsigned char>(number));
    }
    payload.push_back(static_cast<unsigned char>(getProductionVersion()));
    payload.resize(kPayloadBytes);
    return tavrin_answer(&echoed, success(), payload);
}

/// Null when the revision is known, or could be read now.
Answer sReadCmd::findRevision() {
    if (kruversion_checked)
        return nullptr;
    const auto ahead = std::exchange(m_revisionAhead, std::nullopt);
    const Revision revision = ahead ? *ahead : readRevision();
    if (revision.result == RevisionRead::CannotOpen)
        return genericError(kCannotOpen);
    if (revision.result == RevisionRead::CannotRead)
        return genericError(kCannotRead);
    if (revision.value >= 0x10000)
        return genericError(kTooLarge);
    kruversion = static_cast<std::uint16_t>(revision.value);
    kruversion_checked = true;
    return nullptr;
}

ProcessResponse* sReadCmd::tavrin_getStartupStatus() {
    std::vector<unsigned char> request = {kStatusLength, static_cast<unsigned char>(tavrin_getName())};
    return sendStatusTavrin(&request, Startup);
}

ProcessResponse* sReadCmd::sendStatusAscii() {
    return statusText().release();
}

Answer sReadCmd::statusText() {
    const Revision revision = readRevision();
    if (revision.result == RevisionRead::CannotOpen)
        return failureIn<ProcessResponseAscii>(genericError(kCannotOpen));
    if (revision.result == RevisionRead::CannotRead)
        return failureIn<ProcessResponseAscii>(genericError(kCannotReadAscii));
    return asciiSuccess(string_format("\"%s\" %04X \"%X\" %u", getDateTimeString(), kProduct,
                                      revision.value, getProductionVersion()));
}
