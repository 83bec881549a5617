#include "model/DisplayModels.h"

#include "model/UnitState.h"

namespace {

constexpr std::uint32_t kInvalidState = 0x50000001;
constexpr std::uint32_t kAudioError = 0x50010000;

constexpr std::uint32_t kNoSuchOutput = 0x49000002;
constexpr std::uint32_t kNoSuchPicture = 0x49000004;
constexpr std::uint32_t kNoSuchInput = 0x49000008;

constexpr const char* kPictures[] = {"/tmp/colorscale_7bars_888_800x480.bmp",
                                     "/tmp/greyscale_33bars_888_800x480.bmp",
                                     "/tmp/greyscale_11bars_888_800x480.bmp"};
constexpr std::uint32_t kPictureCount = 3;

constexpr int kFirst = 0, kSecond = 4;

Effect state(const std::string& line) {
    return {line, [line] { return isStateOfUnit(line); }};
}

} // namespace

Answer AudioModel::setState(std::uint32_t state) {
    if (state > 1)
        return Answer::refusal(kInvalidState, "invalid state requested");
    Answer answer = Answer::success("");
    answer.effects.push_back(
        ::state(state == 1 ? "audio deva-nvaudio active" : "audio deva-nvaudio inactive"));
    return answer;
}

Answer AudioModel::answer(const Request& request) {
    const std::string frame = request.wholeFrame();
    const Words words(request.words);
    if (request.isFrame() ? frame.size() != 4 : words.count() != 2)
        return Answer::refusal(kAudioError, "Invalid Command Length");
    if (request.isFrame())
        return byteAt(frame, 2) == 0x80
                   ? setState(byteAt(frame, 3))
                   : Answer::refusal(kAudioError,
                                     formatted("Unknown 'E' subcommand: %x", byteAt(frame, 2)));
    const bool activates = words.begins(1, "activate");
    if (!activates && !words.begins(1, "deactivate"))
        return Answer::failure("unknown subcommand '" + words.text(1) + "'");
    Answer answer = setState(activates ? 1 : 0);
    answer.content = "ok";
    return answer;
}

Answer GraphicModel::shown() const {
    Answer answer = Answer::success("");
    answer.effects.push_back(state(m_viewerRuns ? "viewer running" : "viewer stopped"));
    for (const auto& [display, video] : {std::pair<int, std::string>{kFirst, m_videoOfFirst},
                                         std::pair<int, std::string>{kSecond, "black"}}) {
        const auto picture = m_pictures.find(display);
        answer.effects.push_back(
            state(formatted("display %d ", display) +
                  (picture == m_pictures.end() ? video : "picture " + picture->second)));
    }
    return answer;
}

Answer GraphicModel::display(std::uint32_t output, std::uint32_t picture) {
    if (output != 0 && output != 2)
        return Answer::refusal(kNoSuchOutput,
                               "Output Channel for Test picture out of range for PAG variant");
    if (picture >= kPictureCount)
        return Answer::refusal(kNoSuchPicture, "Test picture index out of range");
    if (output == 0)
        m_videoOfFirst = "black";
    m_viewerRuns = true;
    m_pictures = {{output == 0 ? kFirst : kSecond, kPictures[picture]}};
    return shown();
}

Answer GraphicModel::capture(std::uint32_t input, std::uint32_t output) {
    // Even a request that is refused ends the viewer.
    m_viewerRuns = false;
    m_pictures.clear();
    if (output > 1)
        return Answer::refusal(kNoSuchOutput,
                               formatted("The output channel : %u is invalid for video", output));
    if (input == 1 || input > 3)
        return Answer::refusal(kNoSuchInput,
                               formatted("The input channel : %u is invalid for video", input));
    m_videoOfFirst = formatted("input %u", input);
    return shown();
}

Answer GraphicModel::answer(const Request& request) {
    constexpr std::uint32_t kDisplay = 0xA0, kCapture = 0xA1;
    if (request.isFrame()) {
        const std::string frame = request.wholeFrame();
        const std::uint32_t code = frame.size() < 3 ? 0 : byteAt(frame, 2);
        if (code != kDisplay && code != kCapture)
            return Answer::failure(formatted("Unknown 'G' subcommand: %02x", code));
        if (frame.size() != (code == kDisplay ? 5U : 6U))
            return Answer::failure("Invalid Command Length");
        return code == kDisplay ? display(byteAt(frame, 3), byteAt(frame, 4))
                                : capture(byteAt(frame, 4), byteAt(frame, 5));
    }
    const Words words(request.words);
    if (words.count() < 2)
        return Answer::failure("Expected a subcommand!");
    const bool displays = words.begins(1, "display");
    if (!displays && !words.begins(1, "capture"))
        return Answer::failure("Unknown 'graphic' subcommand: " + words.text(1));
    if (words.count() < 4)
        return Answer::failure(displays ? "Expected an output channel and a picture index!"
                                        : "Expected an input channel and an output channel!");
    Answer answer = displays ? display(words.modulo256(2), words.modulo256(3))
                             : capture(words.modulo256(2), words.modulo256(3));
    if (answer.succeeds())
        answer.content = "ok";
    return answer;
}
