#include "support/CommandRun.h"

#include <sys/mman.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "Expect.h"
#include "commands/GCmd.h"
#include "core/Handler.h"
#include "core/ProcessResponse.h"
#include "devices/CommHandler.h"
#include "frontends/CommandLexer.h"
#include "frontends/LineAssembler.h"
#include "support/ErrorText.h"
#include "support/UnitDrivers.h"
#include "support/UnitFiles.h"
#include "support/UnitTools.h"
#include "wire/BigEndian.h"
#include "wire/Frame.h"
#include "wire/Line.h"

namespace {

using CommandRun::Frame;
using CommandRun::Outcome;

constexpr std::size_t kShortestEchoed = 4;
constexpr std::size_t kLongestDebugText = 253;
constexpr char kTooShort[] = "request size < 4";

std::string bytesOf(const Frame& frame) {
    return {frame.begin(), frame.end()};
}

/// A front end that keeps what commands send while they run.
class FrontEnd : public AbstractListener {
public:
    void threadLoop(System::Thread*) override {}
    void asyncSend(std::string& text) override {
        lines.push_back(text);
        transcript += "line " + readable(text) + "\n";
    }
    void asyncSend(Frame& frame) override {
        frames.push_back(frame);
        transcript += "frame " + readable(bytesOf(frame)) + "\n";
    }
    int getDeviceListNumber() override { return channel; }

    std::vector<std::string> lines;
    std::vector<Frame> frames;
    std::string transcript;

    static int channel; ///< that the station is on
};

constexpr int kNetwork = 0;
constexpr int kStationLine = 3;
int FrontEnd::channel = kStationLine;

Handler& handler() {
    return *Handler::getInstance();
}

void expectDebugFrame(const Frame& frame) {
    expect(frame.size() >= 2 && frame.size() <= kLongestDebugText + 2,
           "A debug frame has 2 to 255 bytes");
    expectSame<int>(static_cast<int>(frame.size()), frame[0], "a debug frame's length");
    expectSame<int>(wire::kDebugId, frame[1], "a debug frame's mark");
}

/// The status answers with bytes of its own in place of what the request does not have.
bool isStatus(const Frame& request) {
    return request.size() < kShortestEchoed && request[1] == 's';
}

void expectAnswer(const Frame& request, const Frame& answer, const FrontEnd& frontEnd) {
    expect(answer.size() >= wire::kAnswerHeader && answer.size() <= wire::kLongestFrame,
           "An answer has 8 to 255 bytes");
    expectSame<int>(static_cast<int>(answer.size()), answer[0], "an answer's length");
    expectSame<int>(request[1], answer[1], "the command that is answered");
    if (!isStatus(request))
        expect(std::equal(request.begin() + 1, request.begin() + kShortestEchoed, answer.begin() + 1),
               "An answer echoes its request");
    const std::uint32_t code = bigEndian32(answer, 4);
    expect(code != ProcessResponse::kNoAnswer, "The code that stands for no answer is not sent");
    if (code != ProcessResponse::kSuccess) {
        expectSame<std::size_t>(wire::kAnswerHeader, answer.size(), "the length of an error's answer");
        expect(!frontEnd.frames.empty(), "An error's text goes ahead of it");
    }
}

/// Nothing when the request has nothing that an answer could echo.
std::optional<Frame> answerTo(Frame request, FrontEnd& frontEnd) {
    const std::size_t size = request.size();
    try {
        return handler().handleCommand(&request, &frontEnd);
    } catch (const std::out_of_range&) {
        expect(size < kShortestEchoed, "A request with what an answer echoes is answered");
        expect(size < 2 ||
                   (!frontEnd.frames.empty() && bytesOf(frontEnd.frames.back()).substr(2) == kTooShort),
               "It is told of a request that is too short");
        return std::nullopt;
    }
}

bool isPrintable(char character) {
    return character >= ' ' && character <= '~';
}

/// Upper-case hexadecimal without leading zeros, and neither of the codes that are no error.
void expectCode(const std::string& digits) {
    expect(!digits.empty() && digits.size() <= 8 && digits[0] != '0' &&
               digits.find_first_not_of("0123456789ABCDEF") == std::string::npos && digits != "1",
           "An error's answer ends with its code");
}

void expectInfo(const FrontEnd& frontEnd) {
    constexpr std::string_view kOpening = "Info \"";
    expectSame<std::size_t>(1, frontEnd.lines.size(), "the number of an error's lines ahead");
    const std::string& line = frontEnd.lines.front();
    expect(line.size() > kOpening.size() && line.compare(0, kOpening.size(), kOpening) == 0 &&
               line.back() == '"',
           "An error's text goes ahead of it in quotation marks");
}

void expectAnswer(const std::string& name, const std::string& answer, const FrontEnd& frontEnd) {
    expect(std::all_of(answer.begin(), answer.end(), isPrintable),
           "An answer is one line of plain text");
    const std::size_t blank = answer.find(' ');
    expect(blank != std::string::npos, "An answer has a name and a text");
    const std::string answering = answer.substr(0, blank);
    const std::string text = answer.substr(blank + 1);
    constexpr std::string_view kError = "Error 0x";
    if (text.compare(0, kError.size(), kError) == 0) {
        expectCode(text.substr(kError.size()));
        expectInfo(frontEnd);
        expect(answering == name || answering == "Error", "An error names its command");
        return;
    }
    expectSame(name, answering, "the command that is answered");
    expect(!text.empty(), "A success says something");
    expect(frontEnd.lines.empty(), "Nothing is told ahead of a success");
}

std::vector<std::vector<char>> tokensOf(const std::string& line) {
    LineAssembler assembler;
    std::string framed;
    wire::appendRequest(framed, line);
    assembler.append(framed.data(), framed.size());
    return CommandLexer::scan(assembler);
}

/// Zeros again; what was not used takes up nothing.
void clearScratchBuffer() {
    constexpr std::uintptr_t kPage = 4096;
    unsigned char* const begin = AbstractCmd::getGlobalBuffer();
    unsigned char* const end = begin + AbstractCmd::getGlobalBufferSize();
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    unsigned char* const firstPage = begin + (kPage - address % kPage) % kPage;
    const std::size_t pages = static_cast<std::size_t>(end - firstPage) / kPage;
    std::fill(begin, firstPage, 0);
    std::fill(firstPage + pages * kPage, end, 0);
    if (::madvise(firstPage, pages * kPage, MADV_DONTNEED) != 0)
        fail("the scratch buffer cannot be cleared");
}

/// Requests that leave everything as it was at the start; what they answer does not matter.
const std::vector<Frame> kClosing = {
    {4, 'S', 4, 240}, // fetches what the chip has said
    {4, 'S', 1, 240},
    {4, 'S', 1, 241},
    {4, 'S', 1, 0},
    {4, 'S', 1, 1},
    {4, 'S', 1, 2},
    {4, 'S', 1, 3},
    {5, 'm', 177, 0, 2},
    {5, 'm', 177, 1, 2},
    {5, 'm', 178, 0, 2},
    {5, 'm', 179, 0, 2},
    {5, 'm', 180, 0, 2},
    {5, 'm', 180, 1, 2},
    {6, 'I', 255, 0, 0, 1},      // stop conditions
    {7, 'I', 255, 0, 1, 0, 100}, // kHz
};

/// Requests that do things of which the daemon does not do any twice.
const std::vector<Frame> kOnce = {
    {2, 's'}, // finds out about the board's revision
    {6, 'G', 0xA1, 0, 3, 0},
    {6, 'G', 0xA1, 0, 0, 0},
    {6, 'G', 0xA1, 0, 2, 0},
    {5, 'G', 0xA0, 0, 0},
};

void runAll(const std::vector<Frame>& requests) {
    FrontEnd nobody;
    for (Frame request : requests)
        handler().handleCommand(&request, &nobody);
}

/// The dispatcher may hold a request a moment longer than its caller, and with it a response that was
/// not answered.
void expectResponses(unsigned count) {
    handler().runExclusively([] {});
    expectSame<unsigned>(count, ProcessResponse::m_counter, "the number of responses that are left");
}

void renewUnit(unsigned faults) {
    UnitFiles::renew(faults);
    UnitDrivers::renew(faults);
    UnitTools::renew(faults);
}

void endViewer() {
    handler().runExclusively([] { GCmd::getInstance()->quitShowimage(); });
}

} // namespace

/// Makes the commands before there is an input.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::signal(SIGPIPE, SIG_IGN);
    UnitFiles::renew(0);
    comm()->setInterface(Comm::On);
    handler().initHandler();
    runAll({{4, 'S', 0, 240}});
    runAll(kOnce);
    return 0;
}

void CommandRun::renew(unsigned faults) {
    renewUnit(0); // what fails or is not there cannot be closed
    runAll({{4, 'S', 0, 240}});
    runAll(kClosing);
    endViewer();
    clearScratchBuffer();
    tokensOf("ack"); // the next line may have no command
    renewUnit(faults);
    FrontEnd::channel = (faults & kOverNetwork) != 0 ? kNetwork : kStationLine;
    ErrorText::taken();
}

Outcome CommandRun::run(const Frame& request) {
    FrontEnd frontEnd;
    const unsigned responses = ProcessResponse::m_counter;
    const std::optional<Frame> answer = answerTo(request, frontEnd);
    expectResponses(responses);
    for (const Frame& frame : frontEnd.frames)
        expectDebugFrame(frame);
    expect(frontEnd.lines.empty(), "A frame does not lead to lines");
    if (answer && answer->empty())
        expectSame<int>(wire::kAckId, request[1], "the one command that is not answered");
    else if (answer)
        expectAnswer(request, *answer, frontEnd);
    const std::string frame = answer ? bytesOf(*answer) : std::string();
    return {frame, frontEnd.transcript + "answer " + readable(frame) + "\n" + ErrorText::taken()};
}

Outcome CommandRun::run(const std::string& line) {
    const std::vector<std::vector<char>> tokens = tokensOf(line);
    if (tokens.empty())
        return {};
    FrontEnd frontEnd;
    const std::string name = tokens[0].data();
    const unsigned responses = ProcessResponse::m_counter;
    const std::string answer = handler().handleCommand(tokens, &frontEnd);
    expectResponses(responses);
    expect(frontEnd.frames.empty(), "A line does not lead to frames");
    if (answer.empty())
        expectSame("ack", name, "the one command that is not answered");
    else
        expectAnswer(name, answer, frontEnd);
    return {answer, frontEnd.transcript + "answer " + readable(answer) + "\n" + ErrorText::taken()};
}
