#include "commands/SWriteCmd.h"

#include <string>
#include <utility>

#include "commands/RequestSize.h"
#include "core/StringFormat.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

constexpr std::size_t kChannelAt = 3;
constexpr std::size_t kBaudAt = 4;
constexpr std::size_t kFlagsAt = 8;
constexpr std::size_t kDataAt = 4;
constexpr std::size_t kCountAt = 4;

constexpr unsigned char kMostWanted = 242;
constexpr int kStatedMost = 247;

constexpr unsigned int kReadSize = 0x10;

constexpr char kNotSupported[] = "Command %d not supported";
constexpr char kNoSubCommand[] = "no sub command found";
constexpr char kOverflow[] = "Overflow of Requesting Bytes to Read, allowed: [1,%d], requested: %d";

// What opening a serial line takes, beyond opening the wireless chip.
constexpr RequestSize kSerialOpenFrame = {9, kNoLimit, "Expected 9 Bytes min., received %d"};
constexpr RequestSize kSerialOpenLine = {5, kNoLimit, "Expected 5 Parameters, received %d"};

Answer checkWanted(unsigned char count, int requested) {
    if (static_cast<unsigned char>(count - 1) < kMostWanted)
        return nullptr;
    return failure(kReadSize, kOverflow, kStatedMost, requested);
}

std::string received(const char* word, unsigned char channel, const std::string& bytes) {
    return string_format("%s 0x%02X %s", word, channel, bytes.c_str());
}

} // namespace

/// A sub-command in both protocols. A line's word may go on; where two begin alike, the longer one is
/// first.
struct SWriteCmd::SubCommand {
    int code;
    const char* word;
    RequestSize frame;
    RequestSize line;
    Answer (SWriteCmd::*runFrame)(const std::vector<unsigned char>& request);
    Answer (SWriteCmd::*runLine)(const std::vector<std::vector<char>>& tokens);
};

constexpr SWriteCmd::SubCommand SWriteCmd::kSubCommands[] = {
    {0,
     "open",
     {4, kNoLimit, "Expected 4 Bytes min., received %d"},
     {3, kNoLimit, "Expected 3 Parameters min., received %d"},
     &SWriteCmd::openTavrin,
     &SWriteCmd::openAscii},
    {1,
     "close",
     {4, 4, "Expected 4 Bytes, received %d"},
     {3, 3, "Expected 3 Parameter, received %d"},
     &SWriteCmd::closeTavrin,
     &SWriteCmd::closeAscii},
    {2,
     "send",
     {5, kNoLimit, "Expected at least 5 Bytes, received %d"},
     {4, 4, "Expected at least 3 Parameters, received %d"},
     &SWriteCmd::sendTavrin,
     &SWriteCmd::sendAscii},
    {4,
     "getal", // one letter less than the word has is enough
     {4, kNoLimit, "Expected at least 4 Bytes, received %d"},
     {3, 3, "Expected at least 2 Parameters, received %d"},
     &SWriteCmd::getAllTavrin,
     &SWriteCmd::getAllAscii},
    {3,
     "get",
     {5, 5, "Expected 5 Bytes, received %d"},
     {4, 4, "Expected at least 3 Parameters, received %d"},
     &SWriteCmd::getTavrin,
     &SWriteCmd::getAscii},
};

System::Mutex SWriteCmd::s_singleton_mutex(System::Mutex::Normal);

SWriteCmd* SWriteCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new SWriteCmd; });
}

SWriteCmd::SWriteCmd() : AbstractCmd('S', "serial", true) {}

Answer SWriteCmd::run(const std::vector<unsigned char>* request) {
    const int code = tavrin_getCommand(request);
    for (const SubCommand& subCommand : kSubCommands) {
        if (code != subCommand.code)
            continue;
        if (Answer refusal = checkLength(subCommand.frame, tavrin_getRequestLen(request)))
            return refusal;
        return (this->*subCommand.runFrame)(*request);
    }
    return genericError(kNotSupported, code);
}

Answer SWriteCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < 2)
        return genericError(kNoSubCommand);
    const std::vector<char>& word = tokens[1];
    for (const SubCommand& subCommand : kSubCommands) {
        if (!beginsWith(word, subCommand.word))
            continue;
        if (Answer refusal = checkTokens(subCommand.line, tokens))
            return refusal;
        return (this->*subCommand.runLine)(tokens);
    }
    return genericError(kNotSupported, word.empty() ? 0 : static_cast<unsigned char>(word.front()));
}

Answer SWriteCmd::openTavrin(const std::vector<unsigned char>& request) {
    const unsigned char channel = request[kChannelAt];
    if (isWireless(channel))
        return answerEmpty(request, openWireless(channel));
    if (Answer refusal = checkLength(kSerialOpenFrame, request.front()))
        return refusal;
    return answerEmpty(request, open(channel, bigEndian32(request, kBaudAt), request[kFlagsAt]));
}

Answer SWriteCmd::closeTavrin(const std::vector<unsigned char>& request) {
    return answerEmpty(request, close(request[kChannelAt]));
}

Answer SWriteCmd::sendTavrin(const std::vector<unsigned char>& request) {
    return answerEmpty(request,
                       send(request[kChannelAt], request.data() + kDataAt, request.size() - kDataAt));
}

Answer SWriteCmd::getTavrin(const std::vector<unsigned char>& request) {
    const unsigned char count = request[kCountAt];
    // The refusal names the request's length in place of the count.
    if (Answer refusal = checkWanted(count, request.front()))
        return refusal;
    std::vector<unsigned char> data;
    return tavrin_answer(&request, get(request[kChannelAt], count, data), data);
}

Answer SWriteCmd::getAllTavrin(const std::vector<unsigned char>& request) {
    std::vector<unsigned char> data;
    return tavrin_answer(&request, getAll(request[kChannelAt], data), data);
}

Answer SWriteCmd::answerEmpty(const std::vector<unsigned char>& request, Answer result) {
    std::vector<unsigned char> nothing;
    return tavrin_answer(&request, std::move(result), nothing);
}

unsigned char SWriteCmd::byteToken(const std::vector<char>& token) const {
    return static_cast<unsigned char>(ascii_getInt(token));
}

Answer SWriteCmd::openAscii(const std::vector<std::vector<char>>& tokens) {
    const unsigned char channel = byteToken(tokens[2]);
    if (isWireless(channel))
        return openWireless(channel);
    if (Answer refusal = checkTokens(kSerialOpenLine, tokens))
        return refusal;
    return open(channel, static_cast<unsigned int>(ascii_getInt(tokens[3])), byteToken(tokens[4]));
}

Answer SWriteCmd::closeAscii(const std::vector<std::vector<char>>& tokens) {
    return close(byteToken(tokens[2]));
}

Answer SWriteCmd::sendAscii(const std::vector<std::vector<char>>& tokens) {
    const std::vector<unsigned char> data(tokens[3].begin(), tokens[3].end());
    return send(byteToken(tokens[2]), data.data(), data.size());
}

Answer SWriteCmd::getAscii(const std::vector<std::vector<char>>& tokens) {
    const unsigned char channel = byteToken(tokens[2]);
    const unsigned char count = byteToken(tokens[3]);
    if (Answer refusal = checkWanted(count, count))
        return refusal;
    std::vector<unsigned char> data;
    return ascii_answer(get(channel, count, data),
                        [&] { return received("get", channel, ascii_buildBase64String(data)); });
}

Answer SWriteCmd::getAllAscii(const std::vector<std::vector<char>>& tokens) {
    const unsigned char channel = byteToken(tokens[2]);
    std::vector<unsigned char> data;
    return ascii_answer(getAll(channel, data),
                        [&] { return received("getall", channel, ascii_buildBase64String(data)); });
}
