#include "transfer/Unit.h"

#include <algorithm>
#include <numeric>

#include "client/Failure.h"
#include "client/Quoting.h"

namespace station {

namespace {

constexpr char kMemory[] = "memory";
constexpr char kBlockDevice[] = "blockdev";
constexpr char kDiagnostics[] = "diag";
constexpr char kChecked[] = "8bitcrc";
constexpr char kLinearMemory[] = "0";
constexpr std::string_view kChecksumOpening = "cksum ";
constexpr std::size_t kWriteArguments = 6;
constexpr std::size_t kNumberBytes = 4;

// How the unit says that written bytes do not have their sum: with a code of its own over a binary link,
// with a message in an ASCII line.
constexpr std::uint32_t kDamagedCode = 0x08000400;
constexpr std::string_view kDamagedMessage = "Invalid checksum in write request";

[[noreturn]] void failMalformed(const std::string& expected, const std::string& text) {
    throw Failure(Failure::Kind::MalformedAnswer,
                  "malformed answer: expected " + expected + ": " + text);
}

std::uint8_t sumOf(std::string_view bytes) {
    const unsigned total = std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned sum, char byte) {
        return sum + static_cast<unsigned char>(byte);
    });
    return static_cast<std::uint8_t>(total);
}

/// Exactly so many bytes, from an answer that is hex(...) or base64(...).
std::string bytesOf(const std::string& text, std::string_view encoded, std::size_t count,
                    const std::string& expected) try {
    std::string bytes = isEncodedArgument(encoded) ? argumentBytes(encoded) : std::string();
    if (bytes.size() != count)
        failMalformed(expected, text);
    return bytes;
} catch (const Failure&) {
    failMalformed(expected, text);
}

std::uint32_t numberOf(const std::string& text, std::string_view encoded, const std::string& expected) {
    std::uint32_t number = 0;
    for (const char byte : bytesOf(text, encoded, kNumberBytes, expected))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

} // namespace

bool Unit::moveMemory(std::size_t total, const PieceRequest& request, const PieceAnswer& take) try {
    const auto pieceAt = [total](std::size_t at) { return std::min(kMostRequestBytes, total - at); };
    const std::size_t width = total > kMostRequestBytes ? m_session.widen() : 1;
    std::size_t underWay = 0;
    std::size_t asked = 0;
    for (std::size_t done = 0; done < total; done += pieceAt(done)) {
        for (; asked < total && underWay < width; ++underWay) {
            stopIfInterrupted(m_interruption);
            m_session.begin(kMemory, request(asked, pieceAt(asked)));
            asked += pieceAt(asked);
        }
        const Answer answer = finishCommand(m_session, m_onInfo);
        --underWay;
        if (!take(done, pieceAt(done), answer)) {
            m_session.abandon();
            return false;
        }
    }
    return true;
} catch (...) {
    m_session.abandon();
    throw;
}

bool Unit::writeMemory(std::uint64_t offset, std::string_view bytes, const Moved& onMoved) try {
    const auto request = [&](std::size_t at, std::size_t count) {
        const std::string_view piece = bytes.substr(at, count);
        // Thousands of them in a row: none is copied.
        Arguments arguments;
        arguments.reserve(kWriteArguments);
        arguments.emplace_back("write");
        arguments.emplace_back(kChecked);
        arguments.push_back(std::to_string(count));
        arguments.push_back(std::to_string(offset + at));
        arguments.push_back(base64Argument(piece));
        arguments.push_back(std::to_string(sumOf(piece)));
        return arguments;
    };
    return moveMemory(bytes.size(), request, [&](std::size_t at, std::size_t count, const Answer&) {
        onMoved(at + count);
        return true;
    });
} catch (const Refused& refusal) {
    const bool isDamaged =
        refusal.code() == kDamagedCode || refusal.message().find(kDamagedMessage) != std::string::npos;
    if (!isDamaged)
        throw;
    return false;
}

std::optional<std::string> Unit::readMemory(std::uint64_t offset, std::size_t count,
                                            const Moved& onMoved) {
    std::string bytes;
    bytes.reserve(count);
    const auto request = [&](std::size_t at, std::size_t size) {
        return Arguments{"read", kChecked, std::to_string(size), std::to_string(offset + at)};
    };
    const auto take = [&](std::size_t, std::size_t size, const Answer& answer) {
        const std::string piece =
            bytesOf(answer.text, answer.text, size + 1,
                    "hex(...) with " + std::to_string(size) + " bytes and their sum");
        const std::string_view data = std::string_view(piece).substr(1);
        if (sumOf(data) != static_cast<unsigned char>(piece.front()))
            return false;
        bytes += data;
        onMoved(bytes.size());
        return true;
    };
    if (!moveMemory(count, request, take))
        return std::nullopt;
    return bytes;
}

std::uint32_t Unit::checksum(std::uint64_t offset, std::uint64_t length) {
    stopIfInterrupted(m_interruption);
    const Answer answer =
        execute(kDiagnostics, {"cksum", kLinearMemory, std::to_string(offset), std::to_string(length)});
    const std::string expected = "cksum base64(...) with 4 bytes";
    const std::string_view text = answer.text;
    if (text.substr(0, kChecksumOpening.size()) != kChecksumOpening)
        failMalformed(expected, answer.text);
    return numberOf(answer.text, text.substr(kChecksumOpening.size()), expected);
}

void Unit::openDevice(const DeviceId& device) {
    stopIfInterrupted(m_interruption);
    execute(kBlockDevice, {"open", std::to_string(device.type), std::to_string(device.id)});
}

void Unit::closeDevice(const DeviceId& device) {
    execute(kBlockDevice, {"close", std::to_string(device.type), std::to_string(device.id)});
}

std::uint64_t Unit::readBlocks(const DeviceId& device, std::uint64_t first, std::uint64_t count,
                               std::uint64_t offset) {
    return moveBlocks("read", device,
                      {std::to_string(first), std::to_string(count), std::to_string(offset)});
}

std::uint64_t Unit::writeBlocks(const DeviceId& device, std::uint64_t first, std::uint64_t count,
                                std::uint64_t offset) {
    return moveBlocks("write", device,
                      {std::to_string(first), std::to_string(count), std::to_string(offset)});
}

std::uint64_t Unit::moveBlocks(const char* operation, const DeviceId& device, const Arguments& rest) {
    stopIfInterrupted(m_interruption);
    Arguments arguments = {operation, std::to_string(device.type), std::to_string(device.id)};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    const Answer answer = execute(kBlockDevice, arguments);
    return numberOf(answer.text, answer.text, "base64(...) with a count in 4 bytes");
}

} // namespace station
