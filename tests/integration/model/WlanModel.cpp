#include "model/WlanModel.h"

#include <algorithm>

#include "model/Notation.h"

namespace {

using namespace std::string_literals;

const std::string kFirstAddress = "\2\0\0\0\x87\1"s;

constexpr std::size_t kHeader = 8;
constexpr std::size_t kMostBytes = 255;
constexpr std::size_t kSizeKnown = 4;

constexpr std::uint32_t kDescribe = 0x03, kAddress = 0x4D, kReset = 0xA9;
constexpr std::uint32_t kWrong = 1, kUnknown = 2;

std::uint32_t littleEndian16(const std::string& bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + 1])) << 8;
}

Answer closed() {
    return Answer::failure("you need to open port first");
}

} // namespace

WlanModel::WlanModel() : m_address(kFirstAddress) {}

Answer WlanModel::open() {
    close();
    m_isOpen = true;
    return Answer::success("");
}

Answer WlanModel::close() {
    m_isOpen = false;
    m_collected.clear();
    return Answer::success("");
}

Answer WlanModel::send(const std::string& data) {
    if (!m_isOpen)
        return closed();
    for (const char byte : data) {
        m_collected += byte;
        if (m_collected.size() < kSizeKnown)
            continue;
        const std::uint32_t size = littleEndian16(m_collected, 2);
        if (size < kHeader || size > kMostBytes) {
            m_collected.clear();
            return Answer::failure(
                formatted("Size of a host command must be in Range [8,255] but is %u", size));
        }
        if (m_collected.size() < size)
            continue;
        const auto refusal = carryOut();
        m_collected.clear();
        if (refusal)
            return *refusal;
    }
    return Answer::success("");
}

std::optional<Answer> WlanModel::carryOut() {
    const std::uint32_t code = littleEndian16(m_collected, 0);
    const std::string payload = m_collected.substr(kHeader);
    std::string told;
    std::uint32_t result = 0;
    if (code == kDescribe) {
        told = "\1\0\x87\x87"s + m_address + "\x30\0\1\0\0\3\2\1"s;
    } else if (code == kReset) {
        m_address = kFirstAddress;
    } else if (code != kAddress) {
        result = kUnknown;
    } else if (payload.size() != kHeader || littleEndian16(payload, 0) > 1) {
        result = kWrong;
    } else {
        if (payload[0] == 1)
            m_address = payload.substr(2);
        told = payload.substr(0, 2) + m_address;
    }
    if (result != 0)
        return Answer::failure(formatted("cmd.result was %u", result));
    m_reply = std::string{m_collected[0],
                          asByte(code >> 8 | 0x80),
                          asByte(static_cast<std::uint32_t>(kHeader + told.size())),
                          0,
                          m_collected[4],
                          m_collected[5],
                          0,
                          0} +
              told;
    return std::nullopt;
}

Answer WlanModel::get(std::size_t count) {
    if (!m_isOpen)
        return closed();
    std::string bytes = m_reply.substr(0, count);
    bytes.resize(count);
    m_reply.clear();
    return Answer::success(bytes);
}
