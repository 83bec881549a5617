#include "model/Model.h"

#include <algorithm>
#include <cctype>

#include "model/BlockModel.h"
#include "model/DisplayModels.h"
#include "model/ExecModel.h"
#include "model/I2cModel.h"
#include "model/PortModel.h"
#include "model/ScratchModel.h"
#include "model/SerialModel.h"
#include "model/StatusModel.h"

namespace {

/// The name of the command that takes frames with this id; none for one that nobody takes.
std::string nameOf(char id) {
    constexpr std::pair<char, const char*> kIds[] = {
        {6, "ack"},    {'D', "diag"},     {'E', "audio"}, {'G', "graphic"}, {'i', "i2c"},
        {'I', "i2c"},  {'m', "blockdev"}, {'p', "port"},  {'P', "port"},    {'s', "status"},
        {'c', "exec"}, {'S', "serial"},   {'t', "memory"}};
    for (const auto& [known, name] : kIds)
        if (known == id)
            return name;
    return {};
}

/// Ids that are no letters are shown as numbers.
std::string shown(char id) {
    const auto byte = static_cast<unsigned char>(id);
    const bool isLetter = byte < 0x80 && std::isalpha(byte) != 0;
    return isLetter ? std::string(1, id) : formatted("0x%02X", static_cast<unsigned>(byte));
}

class AcknowledgementModel : public CommandModel {
public:
    Answer answer(const Request&) override { return Answer::nothing(); }
};

} // namespace

Model::Model(const std::string& buildStamp, int stationLink)
    : m_stationLink(stationLink), m_scratch(kScratchSize) {
    m_commands["ack"] = std::make_unique<AcknowledgementModel>();
    m_commands["audio"] = std::make_unique<AudioModel>();
    m_commands["blockdev"] = std::make_unique<BlockModel>(m_scratch);
    m_commands["diag"] = std::make_unique<ChecksumModel>(m_scratch);
    m_commands["exec"] = std::make_unique<ExecModel>();
    m_commands["graphic"] = std::make_unique<GraphicModel>();
    m_commands["i2c"] = std::make_unique<I2cModel>();
    m_commands["memory"] = std::make_unique<MemoryModel>(m_scratch);
    m_commands["port"] = std::make_unique<PortModel>();
    m_commands["serial"] = std::make_unique<SerialModel>(stationLink);
    m_commands["status"] = std::make_unique<StatusModel>(buildStamp);
}

CommandModel* Model::commandOf(const Request& request) const {
    if (request.isFrame() && request.frame.empty())
        return nullptr;
    const auto found =
        m_commands.find(request.isFrame() ? nameOf(request.frame[0]) : Words(request.words).text(0));
    return found == m_commands.end() ? nullptr : found->second.get();
}

bool Model::knows(const Request& request) const {
    const CommandModel* command = commandOf(request);
    return command == nullptr || command->knows(request);
}

Answer Model::answerOf(const Request& request, std::string& name) {
    constexpr std::uint32_t kUnknownName = 0x10;
    constexpr char kNoHandler[] = "No Handler for the Command ";
    if (CommandModel* command = commandOf(request))
        return command->answer(request);
    if (!request.isFrame()) {
        const std::string text = kNoHandler + name;
        name = "Error";
        return Answer::refusal(kUnknownName, text);
    }
    return Answer::failure(request.frame.empty() ? "Commandlen of 1 not allowed"
                                                 : kNoHandler + shown(request.frame[0]));
}

Model::Prediction Model::predict(const Request& request) {
    std::string name = request.isFrame() ? "" : Words(request.words).text(0);
    const Answer answer = answerOf(request, name);
    // Only the network answers by an empty text what wants no answer.
    if (answer.kind == Answer::Kind::Nothing && request.link == m_stationLink)
        return {"", false, {}};
    return {onTheWire(request, answer, name), isAnswered(request, answer), answer.effects};
}
