#include "core/AbstractCmd.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "core/Handler.h"
#include "core/TokenNumber.h"
#include "wire/Base64.h"
#include "wire/BigEndian.h"
#include "wire/Frame.h"
#include "wire/HexDigit.h"

namespace {

constexpr unsigned int kScratchBytes = 0x8000000;

constexpr std::size_t kMaxDebugText = 253;

constexpr char kCommandIsEmpty[] = "Command is empty";
constexpr char kWrongBufferSize[] = "Internal Error: Invalid Request Buffer Size";
constexpr char kLengthOutOfRange[] = "Command Length must be in Range [2, 255], but is %d";
constexpr char kWrongCommandName[] = "Get a Process-Request with invalid Command-Name: %c";
constexpr char kRequestTooShort[] = "request size < 4";
constexpr char kPayloadTruncated[] = "Payload truncated. Response is maybe invalid";

unsigned char byteAt(const std::vector<unsigned char>* request, std::size_t index) {
    if (request == nullptr || index >= request->size())
        throw std::out_of_range("invalid vector<T> subscript");
    return (*request)[index];
}

unsigned char byteOrZero(const std::vector<unsigned char>* request, std::size_t index) {
    return request == nullptr || index >= request->size() ? 0 : (*request)[index];
}

} // namespace

unsigned char* AbstractCmd::m_buffer = nullptr;
unsigned int AbstractCmd::m_size = 0;

AbstractCmd::AbstractCmd(char id, std::string name, bool registerSelf)
    : m_id(id), m_name(std::move(name)) {
    if (!registerSelf)
        return;
    if (!m_name.empty())
        Handler::getInstance()->registerHandler(m_name, this);
    if (m_id != 0)
        Handler::getInstance()->registerHandler(m_id, this);
}

AbstractCmd::~AbstractCmd() {
    std::free(getGlobalBuffer());
}

void AbstractCmd::setListener(AbstractListener* listener) {
    m_listener = listener;
}

void AbstractCmd::createGlobalBuffer() {
    if (m_buffer != nullptr)
        return;
    // calloc, so that the system's own zero pages stand behind the buffer until they are written to.
    m_buffer = static_cast<unsigned char*>(std::calloc(kScratchBytes, 1));
    m_size = m_buffer == nullptr ? 0 : kScratchBytes;
}

unsigned char* AbstractCmd::getGlobalBuffer() {
    createGlobalBuffer();
    return m_buffer;
}

unsigned int AbstractCmd::getGlobalBufferSize() {
    createGlobalBuffer();
    return m_size;
}

signed char AbstractCmd::tavrin_getName() const {
    return static_cast<signed char>(m_id);
}

int AbstractCmd::tavrin_getRequestLen(const std::vector<unsigned char>* request) const {
    if (request == nullptr)
        return 0;
    return request->empty() ? -1 : request->front();
}

int AbstractCmd::tavrin_getCommand(const std::vector<unsigned char>* request) const {
    return request == nullptr || request->size() < 3 ? -1 : (*request)[2];
}

ProcessResponse* AbstractCmd::tavrin_preCheck(std::vector<unsigned char>* request) {
    const auto refuse = [this, request](const std::string& text) {
        return tavrin_generateGenericError(request, text).release();
    };
    if (request == nullptr || request->empty())
        return refuse(kCommandIsEmpty);
    const unsigned char length = request->front();
    if (length != request->size())
        return refuse(kWrongBufferSize);
    if (length < 2)
        return refuse(string_format(kLengthOutOfRange, length));
    const int name = (*request)[1];
    if (name != static_cast<unsigned char>(m_id))
        return refuse(string_format(kWrongCommandName, name));
    return process(request);
}

std::vector<unsigned char> AbstractCmd::tavrin_exec(std::vector<unsigned char>* request,
                                                    ProcessResponse* response) {
    if (response->code == ProcessResponse::kNoAnswer)
        return {};
    const Answer owned(response);
    if (!failed(*response) && response->protocol == 't') {
        auto* answer = static_cast<ProcessResponseTavrin*>(response);
        if (answer->data.empty())
            tavrin_fillDefaultResponse(request, answer, 0, nullptr);
        return std::move(answer->data);
    }
    if (failed(*response))
        tavrin_sendAsyncDebug(response->message);
    ProcessResponseTavrin answer(response->code, "");
    tavrin_fillDefaultResponse(request, &answer, 0, nullptr);
    return std::move(answer.data);
}

void AbstractCmd::tavrin_fillDefaultResponse(const std::vector<unsigned char>* request,
                                             ProcessResponseTavrin* response, unsigned char payloadLen,
                                             const unsigned char* payload) {
    if (request == nullptr || request->size() < 4)
        tavrin_sendAsyncDebug(kRequestTooShort);
    if (payloadLen > wire::kLongestPayload) {
        response->message = kPayloadTruncated;
        payloadLen = wire::kLongestPayload;
    }
    const std::size_t total =
        payload == nullptr ? wire::kAnswerHeader : wire::kAnswerHeader + payloadLen;
    response->data.assign(total, 0);
    response->data[0] = static_cast<unsigned char>(total);
    for (std::size_t at = 1; at < 4; ++at)
        response->data[at] = byteAt(request, at);
    putBigEndian32(response->data, 4, response->code);
    if (payload != nullptr)
        std::copy_n(payload, payloadLen, response->data.begin() + wire::kAnswerHeader);
}

void AbstractCmd::tavrin_fillDefaultResponse(const std::vector<unsigned char>* request,
                                             ProcessResponseTavrin* response,
                                             std::vector<unsigned char>& payload) {
    if (payload.empty())
        tavrin_fillDefaultResponse(request, response, 0, nullptr);
    else
        tavrin_fillDefaultResponse(request, response, static_cast<unsigned char>(payload.size()),
                                   payload.data());
}

Answer AbstractCmd::tavrin_answer(const std::vector<unsigned char>* request, Answer result,
                                  std::vector<unsigned char>& payload) {
    if (failed(*result))
        return result;
    auto answer = std::make_unique<ProcessResponseTavrin>(result->code, "");
    tavrin_fillDefaultResponse(request, answer.get(), payload);
    return answer;
}

std::unique_ptr<ProcessResponseTavrin> AbstractCmd::tavrin_generateGenericError(
    const std::vector<unsigned char>* request, const std::string& text) {
    auto response = std::make_unique<ProcessResponseTavrin>(ProcessResponse::kGenericError, "");
    response->message = text;
    response->data.assign(wire::kAnswerHeader, 0);
    response->data[0] = wire::kAnswerHeader;
    for (std::size_t at = 1; at < 4; ++at)
        response->data[at] = byteOrZero(request, at);
    putBigEndian32(response->data, 4, ProcessResponse::kGenericError);
    return response;
}

std::unique_ptr<ProcessResponseTavrin> AbstractCmd::tavrin_generateGenericError(
    const std::vector<unsigned char>* request, const char* text) {
    return tavrin_generateGenericError(request, string_format("%s", text));
}

void AbstractCmd::tavrin_sendAsyncDebug(const std::string& text) {
    if (m_listener == nullptr)
        return;
    const std::size_t length = std::min(text.size(), kMaxDebugText);
    std::vector<unsigned char> frame(length + 2);
    frame[0] = static_cast<unsigned char>(length + 2);
    frame[1] = wire::kDebugId;
    std::memcpy(frame.data() + 2, text.data(), length);
    m_listener->asyncSend(frame);
}

void AbstractCmd::tavrin_sendAsyncDebug(const char* text) {
    tavrin_sendAsyncDebug(std::string(text));
}

std::string AbstractCmd::ascii_getName() const {
    return m_name;
}

int AbstractCmd::ascii_getInt(const std::vector<char>& token) const {
    const std::int64_t number = tokenNumber(token);
    if (number > std::numeric_limits<std::uint32_t>::max())
        return std::numeric_limits<int>::max();
    if (number < std::numeric_limits<int>::min())
        return std::numeric_limits<int>::min();
    return static_cast<int>(number);
}

std::string AbstractCmd::ascii_exec(ProcessResponse* response) {
    return ascii_exec(response, m_listener);
}

std::string AbstractCmd::ascii_exec(ProcessResponse* response, AbstractListener* listener) const {
    if (response->code == ProcessResponse::kNoAnswer)
        return {};
    const Answer owned(response);
    if (failed(*response))
        return errorLine(*response, listener);
    if (response->protocol != 'a')
        return m_name + " ok";
    // In its place, since it may be huge.
    std::string& answer = static_cast<ProcessResponseAscii*>(response)->answer;
    answer.insert(0, m_name + " ");
    return std::move(answer);
}

std::string AbstractCmd::errorLine(ProcessResponse& response, AbstractListener* listener) const {
    if (listener != nullptr) {
        response.message.insert(0, "Info \"").push_back('"');
        listener->asyncSend(response.message);
    }
    return string_format("%s Error 0x%X", m_name.c_str(), response.code);
}

std::vector<unsigned char> AbstractCmd::ascii_buildHexVector(const std::string& text) const {
    std::vector<unsigned char> bytes;
    int high = -1;
    for (const char character : text) {
        const int digit = hexDigit(character);
        if (digit < 0)
            continue;
        if (high < 0) {
            high = digit;
            continue;
        }
        bytes.push_back(static_cast<unsigned char>(high * 16 + digit));
        high = -1;
    }
    return bytes;
}

std::string AbstractCmd::ascii_buildHexString(const std::vector<unsigned char>& bytes, bool wrap) const {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const unsigned char byte : bytes) {
        digits += kDigits[byte >> 4];
        digits += kDigits[byte & 0x0F];
    }
    return wrap ? "hex(" + digits + ")" : digits;
}

std::string AbstractCmd::ascii_buildBase64String(const std::vector<unsigned char>& bytes,
                                                 unsigned int len) const {
    const std::size_t length = std::min<std::size_t>(len, bytes.size());
    return "base64(" + System::encodeBase64(bytes.data(), length) + ")";
}

std::string AbstractCmd::ascii_buildBase64String(const std::vector<unsigned char>& bytes) const {
    return "base64(" + System::encodeBase64(bytes.data(), bytes.size()) + ")";
}
