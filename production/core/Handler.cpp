#include "core/Handler.h"

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>

#include "commands/ErrorCmd.h"
#include "core/Diagnostics.h"
#include "core/StandardStream.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"

namespace {

constexpr std::uint32_t kUnknownName = 0x10;

// How often a caller lets other threads run before it goes to sleep. Most commands are done by then,
// which saves the sleep and the wake-up: a quarter of the time that the hand-over costs on one core.
constexpr int kTurnsBeforeSleep = 8;

constexpr char kNullHandler[] = "Listener::registerHandler: Handler is NULL";
constexpr char kIdTaken[] =
    "Listener::registerHandler: Unable to register Handler: %c. Reason: Command %c registered by %c\n";
constexpr char kNameTaken[] =
    "Listener::registerHandler: Unable to register Handler: %s. Reason: Command %s registered by %s";
constexpr char kNoHandler[] = "No Handler for the Command ";
constexpr char kEmptyRequest[] = "command fehler\n";

/// Calls a command's `process`, whatever it does: what it throws, and no response at all, become the
/// generic error.
template <typename Process>
Answer guarded(Process process) {
    constexpr char kNoResponse[] = "The command gave no response";
    constexpr char kUnknownException[] = "The command failed with an unknown exception";
    std::string reason = kNoResponse;
    try {
        if (Answer response{process()})
            return response;
    } catch (const std::exception& exception) {
        reason = exception.what();
    } catch (...) {
        reason = kUnknownException;
    }
    return genericError("%s", reason.c_str());
}

} // namespace

/// One request on its way through the dispatcher. The caller fills in the first part and waits; the
/// dispatcher fills in the second part, then sets `done`. Both keep it alive, so that the dispatcher may
/// signal after the caller has already left.
struct Handler::Request {
    std::function<void()> action; // to be run in place of a command
    AbstractCmd* command = nullptr;
    AbstractListener* listener = nullptr;
    bool isAscii = false;
    std::vector<unsigned char>* frame = nullptr;
    std::vector<std::vector<char>>* tokens = nullptr;
    std::string unknownCommand; // what to complain of; empty when the command is known

    std::vector<unsigned char> answerFrame;
    Answer response;            // of an ASCII request
    std::exception_ptr failure; // for the caller
    std::atomic<bool> done{false};
    System::Condition requestDone;
};

System::Mutex Handler::s_singleton_mutex(System::Mutex::Normal);

Handler* Handler::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new Handler; });
}

Handler::Handler()
    : m_registryLock(System::Mutex::Normal),
      m_requestLock(System::Mutex::Normal),
      m_doneLock(System::Mutex::Normal) {}

bool Handler::registerHandler(char id, AbstractCmd* cmd) {
    if (cmd == nullptr) {
        printDiagnostic(kNullHandler);
        return false;
    }
    const System::Lock lock(m_registryLock);
    const auto [entry, isNew] = m_commandsById.emplace(id, cmd);
    if (!isNew)
        printDiagnostic(kIdTaken, cmd->tavrin_getName(), id, entry->second->tavrin_getName());
    return isNew;
}

bool Handler::registerHandler(std::string name, AbstractCmd* cmd) {
    if (cmd == nullptr) {
        printDiagnostic(kNullHandler);
        return false;
    }
    const System::Lock lock(m_registryLock);
    const auto [entry, isNew] = m_commandsByName.emplace(name, cmd);
    if (!isNew)
        printDiagnostic(kNameTaken, cmd->ascii_getName().c_str(), name.c_str(),
                        entry->second->ascii_getName().c_str());
    return isNew;
}

std::string Handler::getHandlerName(unsigned char id) const {
    const bool isLetter = (id >= 'a' && id <= 'z') || (id >= 'A' && id <= 'Z');
    if (isLetter)
        return std::string(1, static_cast<char>(id));
    char text[sizeof "0xFF"];
    std::snprintf(text, sizeof text, "0x%02X", id);
    return text; // so short that it takes no memory
}

std::vector<unsigned char> Handler::handleCommand(std::vector<unsigned char>* frame,
                                                  AbstractListener* listener) {
    if (frame == nullptr || frame->size() < 2)
        throw std::out_of_range("invalid vector<T> subscript");
    const auto request = std::make_shared<Request>();
    request->listener = listener;
    request->frame = frame;
    const unsigned char id = (*frame)[1];
    const auto entry = m_commandsById.find(static_cast<char>(id));
    if (entry == m_commandsById.end()) {
        request->command = ErrorCmd::getInstance();
        request->unknownCommand = kNoHandler + getHandlerName(id);
    } else {
        request->command = entry->second;
    }
    runAndWait(request);
    return std::move(request->answerFrame);
}

std::string Handler::handleCommand(std::vector<std::vector<char>> tokens, AbstractListener* listener) {
    const auto request = std::make_shared<Request>();
    request->listener = listener;
    request->isAscii = true;
    if (!tokens.empty()) {
        const std::string name = tokenText(tokens.front());
        const auto entry = m_commandsByName.find(name);
        if (entry == m_commandsByName.end()) {
            request->command = ErrorCmd::getInstance();
            request->unknownCommand = kNoHandler + name;
        } else {
            request->command = entry->second;
        }
    }
    request->tokens = &tokens; // freed here: there may be millions
    runAndWait(request);
    return request->response ? answerLine(*request) : std::string();
}

void Handler::runExclusively(std::function<void()> action) {
    const auto request = std::make_shared<Request>();
    request->action = std::move(action);
    runAndWait(request);
}

void Handler::runAndWait(const std::shared_ptr<Request>& request) {
    {
        const System::Lock lock(m_requestLock);
        m_pending.push_back(request);
    }
    m_requestReady.signal();
    for (int turn = 0; turn < kTurnsBeforeSleep && !request->done; ++turn)
        ::sched_yield();
    if (!request->done) {
        const System::Lock lock(m_doneLock);
        while (!request->done)
            request->requestDone.wait(m_doneLock);
    }
    if (request->failure)
        std::rethrow_exception(std::move(request->failure)); // the dispatcher keeps no part of it
}

std::shared_ptr<Handler::Request> Handler::nextRequest() {
    const System::Lock lock(m_requestLock);
    while (m_pending.empty())
        m_requestReady.wait(m_requestLock);
    std::shared_ptr<Request> request = std::move(m_pending.front());
    m_pending.pop_front();
    return request;
}

void Handler::threadLoop(System::Thread*) {
    setState(Started, false);
    while (getState() <= Connected) {
        const std::shared_ptr<Request> request = nextRequest();
        run(*request);
        {
            const System::Lock lock(m_doneLock);
            request->done = true;
        }
        request->requestDone.signal();
    }
}

void Handler::run(Request& request) {
    try {
        if (request.action)
            request.action();
        else if (request.command == nullptr)
            StandardStream::output().write(kEmptyRequest);
        else
            runCommand(request);
    } catch (...) {
        request.failure = std::current_exception();
    }
}

void Handler::runCommand(Request& request) {
    request.command->setListener(request.listener);
    // The front end may be gone as soon as its request is done.
    const std::unique_ptr<AbstractCmd, void (*)(AbstractCmd*)> command(
        request.command, [](AbstractCmd* used) { used->setListener(nullptr); });
    if (request.isAscii)
        runAscii(request);
    else
        runBinary(request);
}

void Handler::runBinary(Request& request) {
    Answer response = guarded([&request]() -> Answer {
        if (request.unknownCommand.empty())
            return Answer(request.command->tavrin_preCheck(request.frame));
        return ErrorCmd::getInstance()->generateGenericTavrinError(request.frame,
                                                                   request.unknownCommand);
    });
    if (response->code != ProcessResponse::kNoAnswer)
        request.answerFrame = request.command->tavrin_exec(request.frame, response.release());
}

void Handler::runAscii(Request& request) {
    request.response = guarded([&request]() -> Answer {
        if (request.unknownCommand.empty())
            return Answer(request.command->process(*request.tokens));
        // The name came from outside: it is text, never a format.
        return std::make_unique<ProcessResponseAscii>(kUnknownName, "%s",
                                                      request.unknownCommand.c_str());
    });
}

std::string Handler::answerLine(Request& request) {
    if (request.response->code == ProcessResponse::kNoAnswer)
        return {};
    return request.command->ascii_exec(request.response.release(), request.listener);
}
