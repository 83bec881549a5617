#include "model/SerialModel.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <algorithm>

#include "model/Notation.h"
#include "wire/Descriptor.h"

namespace {

constexpr std::uint32_t kFailed = 0x0A000000;
constexpr std::uint32_t kNoSuchChannel = 0x0A000004;
constexpr std::uint32_t kNoSuchParity = 0x0A000008;
constexpr std::uint32_t kNotOpened = 0x0A000040;
constexpr std::uint32_t kReadSize = 0x10;

constexpr std::uint32_t kLoopback = 0;
constexpr std::uint32_t kMostWanted = 242;
constexpr std::size_t kMostAtOnce = 247;
// Far from what a terminal keeps, so that nobody waits for room.
constexpr std::size_t kMostWaiting = 2000;

constexpr std::uint32_t kSpeeds[] = {50,   75,   110,  134,  150,   200,   600,   1200,
                                     1800, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

bool isSpeed(std::uint32_t baud) {
    return std::find(std::begin(kSpeeds), std::end(kSpeeds), baud) != std::end(kSpeeds);
}

/// Whether so many bytes can be read at the unit's end of the plug. To poll has the terminal deliver
/// what is on its way.
bool areReadable(std::size_t count) {
    const System::Descriptor line(::open("/dev/ser1", O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    pollfd event{line.get(), POLLIN, 0};
    int readable = 0;
    return ::poll(&event, 1, 0) >= 0 && ::ioctl(line.get(), FIONREAD, &readable) == 0 &&
           static_cast<std::size_t>(readable) == count;
}

} // namespace

bool SerialModel::knows(const Request& request) const {
    const std::string frame = request.isFrame() ? request.wholeFrame() : "";
    const Words words(request.words);
    if (request.isFrame() ? frame.size() < 4 : words.count() < 3)
        return true;
    const std::uint32_t channel = request.isFrame() ? byteAt(frame, 3) : words.modulo256(2);
    const std::uint32_t operation =
        request.isFrame() ? byteAt(frame, 2) : static_cast<std::uint32_t>(operationOf(words));
    if (channel == kOwnLine)
        return operation == Open && request.link == m_stationLink;
    if (operation != Send)
        return true;
    if (channel == kLoopback)
        return m_channels[kLoopback].waiting.size() < kMostWaiting &&
               request.sent().size() < kMostWaiting;
    // The module answers, and the chip does.
    return channel != 1 && (channel != kBluetooth || !m_bluetoothIsOpen);
}

Answer SerialModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request) : answerLine(request);
}

std::optional<Answer> SerialModel::unusable(std::uint32_t channel) const {
    if (channel > kOwnLine)
        return Answer::refusal(kFailed, "Handle does not exist, errorcode: 1285");
    if (!m_channels[channel].isOpen)
        return Answer::refusal(kFailed, "Serial port not open., errorcode: 1024");
    return std::nullopt;
}

Answer SerialModel::open(std::uint32_t channel, const Settings& settings, int link) {
    constexpr std::uint32_t kParity = 6, kNoParity = 2;
    if (channel == kWlan)
        return m_wlan.open();
    if (channel == kBluetooth) {
        m_bluetoothIsOpen = true;
        return Answer::success("");
    }
    if (channel == (link == m_stationLink ? kOwnLine : kLoopback))
        return Answer::refusal(kNotOpened, "Channel is a already in use by Bios");
    if ((settings.flags & kParity) == kNoParity)
        return Answer::refusal(kNoSuchParity, "Could not detect Parity");
    if (channel > kOwnLine)
        return Answer::refusal(kNoSuchChannel, formatted("Interface id %u unknown", channel));
    // A channel that is opened again is closed first. One with a wrong speed stays open.
    m_channels[channel] = {true, ""};
    if (!isSpeed(settings.baud))
        return Answer::refusal(kNotOpened,
                               formatted("Invalid Baudrate %u, errorcode: 1281", settings.baud));
    return Answer::success("");
}

Answer SerialModel::close(std::uint32_t channel) {
    if (channel == kWlan)
        return m_wlan.close();
    if (channel == kBluetooth)
        m_bluetoothIsOpen = false;
    else if (channel > kOwnLine)
        return *unusable(channel);
    else
        m_channels[channel] = {};
    return Answer::success("");
}

Answer SerialModel::send(std::uint32_t channel, const std::string& data) {
    if (channel == kWlan)
        return m_wlan.send(data);
    if (channel == kBluetooth)
        return data.empty() ? Answer::failure("Expected Data to send") : Answer::success("");
    if (auto refusal = unusable(channel))
        return *refusal;
    Answer answer = Answer::success("");
    if (channel != kLoopback)
        return answer;
    m_channels[channel].waiting += data;
    const std::size_t waiting = m_channels[channel].waiting.size();
    answer.effects.push_back(
        {formatted("%zu bytes wait on /dev/ser1", waiting), [waiting] { return areReadable(waiting); }});
    return answer;
}

Answer SerialModel::get(std::uint32_t channel, std::size_t count) {
    if (channel == kWlan)
        return m_wlan.get(count);
    if (channel == kBluetooth)
        return Answer::success(m_bluetoothIsOpen ? "" : std::string(count, '\0'));
    if (auto refusal = unusable(channel))
        return *refusal;
    std::string& waiting = m_channels[channel].waiting;
    std::string bytes = waiting.substr(0, count);
    waiting.erase(0, count);
    bytes.resize(count);
    return Answer::success(bytes);
}

Answer SerialModel::getAll(std::uint32_t channel) {
    if (channel == kBluetooth && m_bluetoothIsOpen)
        return Answer::refusal(kFailed, "");
    const std::size_t count =
        channel > kOwnLine ? kMostAtOnce : std::min(kMostAtOnce, m_channels[channel].waiting.size());
    return get(channel, count);
}

SerialModel::Operation SerialModel::operationOf(const Words& words) {
    // "getal" is enough.
    constexpr std::pair<const char*, Operation> kWords[] = {
        {"open", Open}, {"close", Close}, {"send", Send}, {"getal", GetAll}, {"get", Get}};
    for (const auto& [word, operation] : kWords)
        if (words.count() > 1 && words.begins(1, word))
            return operation;
    return None;
}

std::optional<Answer> SerialModel::malformedLine(const Words& words, Operation operation) {
    const std::size_t count = words.count();
    const auto wrong = [count](const char* text) {
        return Answer::failure(formatted("%s%zu", text, count - 1));
    };
    if (count < 2)
        return Answer::failure("no sub command found");
    switch (operation) {
        case None:
            return Answer::failure(formatted("Command %d not supported", words.bytes(1)[0]));
        case Open:
            if (count < 3)
                return wrong("Expected 3 Parameters min., received ");
            if (const std::uint32_t channel = words.modulo256(2);
                count < 5 && channel != kWlan && channel != kBluetooth)
                return wrong("Expected 5 Parameters, received ");
            return std::nullopt;
        case Close:
            return count == 3 ? std::nullopt : std::optional(wrong("Expected 3 Parameter, received "));
        case GetAll:
            return count == 3 ? std::nullopt
                              : std::optional(wrong("Expected at least 2 Parameters, received "));
        default:
            return count == 4 ? std::nullopt
                              : std::optional(wrong("Expected at least 3 Parameters, received "));
    }
}

Answer SerialModel::answerLine(const Request& request) {
    const Words words(request.words);
    const Operation operation = operationOf(words);
    if (auto refusal = malformedLine(words, operation))
        return *refusal;
    const std::uint32_t channel = words.modulo256(2);
    Answer answer = Answer::success("");
    if (operation == Open)
        answer =
            open(channel, words.count() < 5 ? Settings{} : Settings{words.bits(3), words.modulo256(4)},
                 request.link);
    else if (operation == Close)
        answer = close(channel);
    else if (operation == Send)
        answer = send(channel, words.bytes(3));
    if (operation <= Send) {
        if (answer.succeeds())
            answer.content = "ok";
        return answer;
    }
    if (operation == Get && (words.modulo256(3) < 1 || words.modulo256(3) > kMostWanted))
        return Answer::refusal(
            kReadSize, formatted("Overflow of Requesting Bytes to Read, allowed: [1,247], requested: %u",
                                 words.modulo256(3)));
    answer = operation == Get ? get(channel, words.modulo256(3)) : getAll(channel);
    if (answer.succeeds())
        answer.content = formatted(operation == Get ? "get 0x%02X " : "getall 0x%02X ", channel) +
                         base64Text(answer.content);
    return answer;
}

std::optional<Answer> SerialModel::malformedFrame(const std::string& frame) {
    const std::size_t size = frame.size();
    const auto wrong = [size](const char* format) {
        return Answer::failure(formatted(format, static_cast<unsigned>(size)));
    };
    const int code = size < 3 ? -1 : static_cast<int>(byteAt(frame, 2));
    switch (code) {
        case Open:
            if (size < 4)
                return wrong("Expected 4 Bytes min., received %u");
            if (const std::uint32_t channel = byteAt(frame, 3);
                size < 9 && channel != kWlan && channel != kBluetooth)
                return wrong("Expected 9 Bytes min., received %u");
            return std::nullopt;
        case Close:
            return size == 4 ? std::nullopt : std::optional(wrong("Expected 4 Bytes, received %u"));
        case Send:
            return size >= 5 ? std::nullopt
                             : std::optional(wrong("Expected at least 5 Bytes, received %u"));
        case Get:
            return size == 5 ? std::nullopt : std::optional(wrong("Expected 5 Bytes, received %u"));
        case GetAll:
            return size >= 4 ? std::nullopt
                             : std::optional(wrong("Expected at least 4 Bytes, received %u"));
        default:
            return Answer::failure(formatted("Command %d not supported", code));
    }
}

Answer SerialModel::answerFrame(const Request& request) {
    const std::string frame = request.wholeFrame();
    if (auto refusal = malformedFrame(frame))
        return *refusal;
    const std::uint32_t channel = byteAt(frame, 3);
    switch (byteAt(frame, 2)) {
        case Open:
            return open(channel,
                        frame.size() < 9 ? Settings{} : Settings{numberAt(frame, 4), byteAt(frame, 8)},
                        request.link);
        case Close:
            return close(channel);
        case Send:
            return send(channel, frame.substr(4));
        case Get:
            if (byteAt(frame, 4) < 1 || byteAt(frame, 4) > kMostWanted)
                return Answer::refusal(kReadSize,
                                       "Overflow of Requesting Bytes to Read, allowed: "
                                       "[1,247], requested: 5");
            return get(channel, byteAt(frame, 4));
        default:
            return getAll(channel);
    }
}
