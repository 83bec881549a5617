// The binary front end over the real driver and dispatcher, with a station that sends anything, with any
// pauses, and hangs up now and then, and with somebody else who closes the port: it runs just the
// requests that the framing makes of that, in their order, and sends just what is due.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Expect.h"
#include "ExpectedLink.h"
#include "Input.h"
#include "SimulatedLine.h"
#include "StandInCommands.h"
#include "commands/sReadCmd.h"
#include "core/Handler.h"
#include "devices/CommHandler.h"
#include "frontends/Listener.h"
#include "support/ScriptedCommand.h"

namespace {

constexpr int kChannel = 3;

// More of it would be refused, rather than kept until a slow line has taken it.
constexpr std::size_t kLongest = 8192;

std::vector<std::string> s_requests; // that were run

std::string textOf(const Bytes& bytes, std::size_t at) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end()};
}

ProcessResponse* succeed() {
    return new ProcessResponse(ProcessResponse::kSuccess);
}

ProcessResponse* answerPayload(ScriptedCommand& command, Bytes* request) {
    auto response = std::make_unique<ProcessResponseTavrin>(ProcessResponse::kSuccess, "");
    Bytes payload = *request;
    command.tavrin_fillDefaultResponse(request, response.get(), payload);
    return response.release();
}

ProcessResponse* answerOwnFrame(const Bytes* request) {
    auto* response = new ProcessResponseTavrin(ProcessResponse::kSuccess, "");
    response->data.assign(request->begin() + 2, request->end());
    return response;
}

ProcessResponse* run(ScriptedCommand& command, char id, Bytes* request) {
    switch (id) {
        case StandIn::kPayload:
            return answerPayload(command, request);
        case StandIn::kFailure:
            return new ProcessResponse(StandIn::kFailureCode, "%s", textOf(*request, 2).c_str());
        case StandIn::kSilence:
            return new ProcessResponse(ProcessResponse::kNoAnswer);
        case StandIn::kTalk:
            command.tavrin_sendAsyncDebug(textOf(*request, 2));
            return succeed();
        case StandIn::kOwnFrame:
            return answerOwnFrame(request);
        case StandIn::kException:
            throw std::runtime_error(StandIn::kExceptionText);
        default:
            return succeed();
    }
}

void makeCommand(char id) {
    ScriptedCommand& command = ScriptedCommand::make(id, std::string(), true);
    command.onRequest = [&command, id](Bytes* request) {
        s_requests.push_back(textOf(*request, 0));
        return run(command, id, request);
    };
}

/// The daemon as it is when it has announced itself once and has reported a failure of its line, which
/// it does once in its life: from then on every station finds it the same.
bool startDaemon() {
    for (const char id : StandIn::kAll)
        makeCommand(id);
    Handler::getInstance()->start();
    const std::unique_ptr<ProcessResponse> status(sReadCmd::getInstance()->tavrin_getStartupStatus());
    Listener listener(kChannel);
    listener.setState(Listener::Running, false);
    Bytes frame{2, 'd'};
    expectSame(0, listener.send(frame, false), "what can be sent before there is a line");
    return !comm()->setInterface(Comm::On).failed();
}

/// A request whose length byte is right.
std::string requestOf(Input& input, std::size_t parameters) {
    const std::string_view rest = input.bytes(parameters + 1);
    return rest.empty() ? std::string() : static_cast<char>(rest.size() + 1) + std::string(rest);
}

enum Event : unsigned { kAcknowledge, kHangUp, kTaking }; // any other number is a pause

void addEvent(Schedule& schedule, unsigned which) {
    constexpr unsigned kPauses[] = {1, 499, 500, 501, 999, 1000, 1001, 2500};
    switch (which) {
        case kAcknowledge:
            return schedule.send("\x02\x06");
        case kHangUp:
            return schedule.end(Schedule::HangUp);
        case kTaking:
            return schedule.end(Schedule::Taking);
        default:
            return schedule.pause(kPauses[which % std::size(kPauses)]);
    }
}

/// A byte says what comes next: with 00 in its highest bits, so many bytes as the others say; with 01 a
/// request with so many parameters, with 10 four times as many; with 11 an acknowledgement, the line's
/// end, or a pause.
Schedule scheduleOf(Input& input, bool mayEnd) {
    Schedule schedule;
    while (!input.isEmpty()) {
        const unsigned control = input.byte();
        const unsigned number = control & 0x3F;
        switch (control >> 6) {
            case 0:
                schedule.send(input.bytes(number));
                break;
            case 1:
                schedule.send(requestOf(input, number));
                break;
            case 2:
                schedule.send(requestOf(input, number * std::size_t{4}));
                break;
            default:
                if ((number != kHangUp && number != kTaking) || mayEnd)
                    addEvent(schedule, number);
                break;
        }
    }
    return schedule;
}

void closePort() {
    Comm::Handle* port = nullptr;
    expect(!comm()->device(&port, kChannel).failed(), "There is a port");
    expect(!port->close().failed(), "The port can be closed");
}

/// Serves the station until nothing comes any more. Returns what it got.
std::string serve(const Schedule& schedule, std::size_t room) {
    Listener listener(kChannel);
    SimulatedLine line(schedule, room, closePort,
                       [&listener] { listener.setState(Listener::Stopping, false); });
    listener.threadLoop(nullptr);
    expectSame<int>(Listener::Dead, listener.getState(), "the front end's state");
    closePort();
    return line.sent();
}

} // namespace

/// How much the line takes at once, in one byte; and what the station does.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isStarted = startDaemon();
    expect(isStarted, "The daemon has started");
    Input input(data, std::min(size, kLongest));
    const unsigned slow = input.byte();
    const bool isSlow = slow % 2 == 1;
    // What a slow line has not taken when it ends is lost, which is as it should be, but hard to tell.
    const Schedule schedule = scheduleOf(input, !isSlow);
    s_requests.clear();
    const unsigned responses = ProcessResponse::m_counter;
    const std::string sent = serve(schedule, isSlow ? 16 + slow : SIZE_MAX);

    const ExpectedLink expected(schedule);
    for (std::size_t at = 0; at < std::min(s_requests.size(), expected.requests().size()); ++at)
        expectSame(expected.requests()[at], s_requests[at], "a request");
    expectSame(expected.requests().size(), s_requests.size(), "the number of requests");
    expectSame(expected.sent(), sent, "what was sent");
    expectSame<unsigned>(responses, ProcessResponse::m_counter, "the number of responses that are left");
    return 0;
}
