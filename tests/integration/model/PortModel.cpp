#include "model/PortModel.h"

#include <optional>

#include "model/Notation.h"
#include "support/Files.h"

const std::array<PortPlace, kPorts> kPortPlaces = {{
    {"ioc_kru_irq", true, false}, {"ipod_accessory", false, false}, {"ipod_detect", false, false},
    {"usb_pwr_1", true, true},    {"usb_pwr_0", true, true},        {"nad_on_off", true, false},
    {"nad_reset", true, false},   {"nad_status", false, false},     {"usb_oc_detect", false, true},
    {"vd1_int", false, true},     {"wlan_reset", true, true},       {"sd_cd1", false, true},
    {"sd_wp1", false, false},     {"sd_ena1", true, true},          {"sd_cd2", false, true},
    {"sd_wp2", false, false},     {"sd_ena2", true, true},          {"cvbs_reset", true, true},
    {"gpio_po4", true, false},    {"gpio_po3", false, false},       {"bt_wlan_pd", true, true},
}};

namespace {

constexpr std::uint32_t kPortRange = 0x27000010;
constexpr std::uint32_t kNotAnOutput = 0x27000040;
constexpr std::uint32_t kWriteFailed = 0x27010000;
constexpr std::uint32_t kPortCode = 0xE3;

std::optional<Answer> noSuchPort(std::uint32_t port) {
    if (port < kPorts)
        return std::nullopt;
    return Answer::refusal(kPortRange,
                           formatted("Invalid Port: %u. Allowed port range is: [0,20]", port));
}

std::optional<Answer> notWritable(std::uint32_t port) {
    if (auto refusal = noSuchPort(port))
        return refusal;
    if (kPortPlaces[port].isOutput)
        return std::nullopt;
    return Answer::refusal(kNotAnOutput, formatted("Port %u is not an Output Port", port));
}

bool isCode(const std::string& frame) {
    return frame.size() > 3 && byteAt(frame, 2) == kPortCode;
}

Answer inHex(Answer answer) {
    if (answer.succeeds())
        answer.content = hexText(answer.content);
    return answer;
}

} // namespace

std::string portNode(std::size_t port) {
    return std::string("/dev/nvgpio/") + kPortPlaces.at(port).name;
}

PortModel::PortModel() {
    for (std::size_t port = 0; port < kPorts; ++port)
        m_levels[port] = kPortPlaces[port].isHighAtFirst;
}

bool PortModel::knows(const Request& request) const {
    if (!request.isFrame()) {
        const Words words(request.words);
        return words.count() < 4 || !words.begins(1, "write") || words.modulo256(2) != kTelephoneSwitch;
    }
    const std::string frame = request.wholeFrame();
    return frame[1] != 'P' || frame.size() < 5 || byteAt(frame, 4) != kTelephoneSwitch;
}

Answer PortModel::answer(const Request& request) {
    if (!request.isFrame())
        return answerLine(Words(request.words));
    const std::string frame = request.wholeFrame();
    return frame[1] == 'P' ? writeFrame(frame) : readFrame(frame);
}

std::uint32_t PortModel::nibble(std::size_t port) const {
    return (kPortPlaces[port].isOutput ? 3U : 1U) | (m_levels[port] ? 4U : 0U);
}

Answer PortModel::read(std::uint32_t port) const {
    if (auto refusal = noSuchPort(port))
        return *refusal;
    return Answer::success({asByte(port), asByte(nibble(port))});
}

Answer PortModel::attributes() const {
    std::string bytes = bigEndian16(kPorts);
    for (std::size_t port = 0; port < kPorts; port += 2)
        bytes += asByte(nibble(port) | (port + 1 < kPorts ? nibble(port + 1) << 4 : 0));
    return Answer::success(bytes);
}

Answer PortModel::write(std::uint32_t port, bool isHigh) {
    m_levels[port] = isHigh;
    Answer answer = Answer::success("");
    const std::string node = portNode(port);
    const std::string level = isHigh ? "1" : "0";
    answer.effects.push_back(
        {node + " holds " + level, [node, level] { return contentOf(node) == level; }});
    return answer;
}

Answer PortModel::answerLine(const Words& words) {
    if (words.count() < 2)
        return Answer::failure("Expected a subcommand!");
    if (words.begins(1, "read"))
        return words.count() == 3 ? inHex(read(words.modulo256(2)))
                                  : Answer::failure("Expected a Port Number!");
    if (words.begins(1, "getattributes"))
        return inHex(attributes());
    if (words.begins(1, "write"))
        return writeLine(words);
    return Answer::failure("unknown subcommand '" + words.text(1) + "'");
}

Answer PortModel::writeLine(const Words& words) {
    if (words.count() != 4)
        return Answer::failure(
            formatted("Invalid Command Length: Expected a Length of 4, get %zu", words.count()));
    const std::uint32_t port = words.modulo256(2);
    if (auto refusal = notWritable(port))
        return *refusal;
    const char level = words.bytes(3)[0];
    if (level != '0' && level != '1')
        return Answer::refusal(kWriteFailed, std::string("Unknown value to write: ") + level);
    Answer answer = write(port, level == '1');
    answer.content = "ok";
    return answer;
}

Answer PortModel::readFrame(const std::string& frame) const {
    const std::uint32_t what = isCode(frame) ? byteAt(frame, 3) : 2;
    if (what > 1)
        return Answer::failure("Command is not supported");
    if (what == 0)
        return frame.size() == 4
                   ? attributes()
                   : Answer::failure(formatted("Invalid Command Length: Expected a Length of 4, get %zu",
                                               frame.size()));
    return frame.size() == 5 ? read(byteAt(frame, 4))
                             : Answer::failure(formatted(
                                   "Expected at a Command Length of 5, received %zu", frame.size()));
}

Answer PortModel::writeFrame(const std::string& frame) {
    constexpr std::uint32_t kLevelBit = 4;
    if (!isCode(frame) || byteAt(frame, 3) != 1)
        return Answer::failure("Command not supported");
    if (frame.size() != 6)
        return Answer::failure(
            formatted("Invalid Command Length: Expected a Length of 6, get %zu", frame.size()));
    const std::uint32_t port = byteAt(frame, 4);
    if (auto refusal = notWritable(port))
        return *refusal;
    return write(port, (byteAt(frame, 5) & kLevelBit) != 0);
}
