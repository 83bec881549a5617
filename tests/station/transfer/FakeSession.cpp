#include "FakeSession.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/Quoting.h"
#include "transfer/Checksum.h"
#include "wire/Base64.h"

namespace station {

namespace {

constexpr std::uint32_t kGenericError = 0x01010000;

std::string base64Of(std::uint32_t number) {
    const unsigned char bytes[] = {
        static_cast<unsigned char>(number >> 24), static_cast<unsigned char>(number >> 16),
        static_cast<unsigned char>(number >> 8), static_cast<unsigned char>(number)};
    return "base64(" + System::encodeBase64(bytes, sizeof bytes) + ")";
}

std::uint8_t sumOf(const std::string& bytes) {
    unsigned sum = 0;
    for (const char byte : bytes)
        sum += static_cast<unsigned char>(byte);
    return static_cast<std::uint8_t>(sum);
}

} // namespace

Answer refusal(const Session::InfoSink& onInfo, const std::string& message) {
    onInfo(message);
    return {refusalText(kGenericError), kGenericError};
}

FakeSession::FakeSession() : m_buffer(static_cast<char*>(std::calloc(kBufferSize, 1)), &std::free) {}

void FakeSession::begin(const std::string& name, const std::vector<std::string>& arguments) {
    Outcome outcome;
    try {
        outcome.answer = run(name, arguments,
                             [&](const std::string& message) { outcome.messages.push_back(message); });
    } catch (...) {
        outcome.failure = std::current_exception();
    }
    m_underWay.push_back(std::move(outcome));
    m_mostUnderWay = std::max(m_mostUnderWay, m_underWay.size());
}

Answer FakeSession::finish(const InfoSink& onInfo) {
    const Outcome outcome = std::move(m_underWay.front());
    m_underWay.pop_front();
    for (const std::string& message : outcome.messages)
        onInfo(message);
    if (outcome.failure)
        std::rethrow_exception(outcome.failure);
    return outcome.answer;
}

Answer FakeSession::run(const std::string& name, const std::vector<std::string>& arguments,
                        const InfoSink& onInfo) {
    std::string request = name;
    for (const std::string& argument : arguments)
        request += ' ' + (isEncodedArgument(argument) ? "DATA" : argument);
    m_requests.push_back(request);
    if (before)
        if (const auto answer = before(request, m_requests.size()))
            return *answer;
    Answer answer = carryOut(name, arguments, onInfo);
    if (after)
        after(request, answer);
    return answer;
}

std::size_t FakeSession::count(const std::string& opening) const {
    return static_cast<std::size_t>(std::count_if(
        m_requests.begin(), m_requests.end(),
        [&](const std::string& request) { return request.compare(0, opening.size(), opening) == 0; }));
}

std::string FakeSession::bufferBytes(std::uint64_t offset, std::size_t count) const {
    return {m_buffer.get() + offset, count};
}

Answer FakeSession::carryOut(const std::string& name, const std::vector<std::string>& arguments,
                             const InfoSink& onInfo) {
    if (name == "memory")
        return memory(arguments, onInfo);
    if (name == "diag")
        return diagnose(arguments, onInfo);
    if (arguments.at(1) != std::to_string(kDevice.type) || arguments.at(2) != std::to_string(kDevice.id))
        return refusal(onInfo, "No Device inserted");
    if (arguments.at(0) == "open" || arguments.at(0) == "close") {
        isOpen = arguments.at(0) == "open";
        return {"ok"};
    }
    return move(arguments, onInfo);
}

Answer FakeSession::memory(const std::vector<std::string>& arguments, const InfoSink& onInfo) {
    const std::uint64_t count = std::stoull(arguments.at(2));
    const std::uint64_t offset = std::stoull(arguments.at(3));
    if (arguments.at(1) != "8bitcrc" || count > kMostRequestBytes || offset + count >= kBufferSize)
        return refusal(onInfo, "Accessing Memory out of Limits");
    if (arguments.at(0) == "read") {
        const std::string bytes = bufferBytes(offset, static_cast<std::size_t>(count));
        return {"hex(" + hexDigits(static_cast<char>(sumOf(bytes)) + bytes) + ")"};
    }
    const std::string bytes = argumentBytes(arguments.at(4));
    if (bytes.size() != count || arguments.at(5) != std::to_string(sumOf(bytes)))
        return refusal(onInfo, "Invalid checksum in write request: 0x00 ");
    std::memcpy(m_buffer.get() + offset, bytes.data(), bytes.size());
    return {"ok"};
}

Answer FakeSession::diagnose(const std::vector<std::string>& arguments, const InfoSink& onInfo) const {
    const std::uint64_t offset = std::stoull(arguments.at(2));
    const std::uint64_t length = std::stoull(arguments.at(3));
    const auto checksum = checksumOf({m_buffer.get() + offset, static_cast<std::size_t>(length)});
    if (!checksum || offset + length >= kBufferSize)
        return refusal(onInfo, "length paramater too small");
    return {"cksum " + base64Of(*checksum)};
}

Answer FakeSession::move(const std::vector<std::string>& arguments, const InfoSink& onInfo) {
    const std::uint64_t first = std::stoull(arguments.at(3));
    const std::uint64_t count = std::stoull(arguments.at(4));
    const std::uint64_t offset = std::stoull(arguments.at(5));
    const std::uint64_t blocks = device.size() / blockSize;
    const bool isWrite = arguments.at(0) == "write";
    if (!isOpen)
        return refusal(onInfo, "Device is not open, errorCode: 16842752");
    if (isWrite && !isWritable)
        return refusal(onInfo, "Device is Read-Only declared, errorCode: 16842752");
    if (first >= blocks)
        return refusal(onInfo, "Startblock does not Exist on Device, errorCode: 16842752");
    if (first + count >= blocks)
        return refusal(onInfo, "Endblock does not exist on Device, errorCode: 16842752");
    const auto length = static_cast<std::size_t>(count * blockSize);
    const auto start = static_cast<std::size_t>(first * blockSize);
    if (isWrite)
        device.replace(start, length, m_buffer.get() + offset, length);
    else
        std::memcpy(m_buffer.get() + offset, device.data() + start, length);
    return {base64Of(static_cast<std::uint32_t>(length))};
}

} // namespace station
