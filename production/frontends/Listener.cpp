#include "frontends/Listener.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "commands/ErrorCmd.h"
#include "commands/sReadCmd.h"
#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "core/StringFormat.h"
#include "frontends/StationLine.h"
#include "wire/Frame.h"

namespace {

constexpr unsigned kLengthTimeoutMs = 1000;
constexpr unsigned kBodyTimeoutMs = 500;
constexpr unsigned kAcknowledgeTimeoutMs = 500;

constexpr char kThreadLoopError[] = "Error in Listener thead loop";
// The code stands in hexadecimal in the one, and in decimal in the other.
constexpr char kLinkException[] = "%u~ ### ~ Exception: ID: 0x%X DESC: %s";
constexpr char kSendException[] = "~ ### ~ Exception: ID: 0x%d DESC: %s";
constexpr char kBadLength[] = "Commandlen of %d not allowed";
constexpr char kEmptyResponse[] = "WARNING: Reponse size is 0";
constexpr char kNoAcknowledgement[] = "NO ACK message received from the client (not critical)";
constexpr char kInvalidCount[] = "Received Data invalid: %u";
constexpr char kNotAnAcknowledgement[] = "Received not an Ack-Message";

// What may well be sent long after its command started.
constexpr char kDebugFrames[] = "d";
constexpr char kAcknowledgements[] = "0x06";

// Held for every dispatch and for the exchange of the startup status.
System::Mutex l_mutex(System::Mutex::Normal);

void printLinkException(unsigned channel, const DeviceResult& result) {
    printDiagnostic(string_format(kLinkException, channel, static_cast<unsigned>(result.code),
                                  result.message.c_str()));
}

void printLoopError(unsigned channel, const DeviceResult& result) {
    printDiagnostic(kThreadLoopError);
    printLinkException(channel, result);
}

void printSendException(const DeviceResult& result) {
    printDiagnostic(string_format(kSendException, result.code, result.message.c_str()));
}

/// Whether a read of a port that was open ended because somebody else has closed it, and perhaps opened
/// it again: it is theirs then, and their doing is no failure.
bool isTaken(const DeviceResult& result, bool wasOpen) {
    return wasOpen && result.code == DeviceError::kNotUsable;
}

/// Reports a failure as `Comm::Handle::read` does, unless the port was taken.
DeviceResult receive(Comm::Handle& port, bool isOpen, unsigned& count, unsigned char* buffer,
                     std::size_t length, unsigned timeoutMs) {
    DeviceResult result = port.receive(count, buffer, static_cast<int>(length), timeoutMs);
    if (result.failed() && !isTaken(result, isOpen))
        Comm::Handle::reportReadFailure();
    return result;
}

DeviceResult asResult(const std::exception& exception) {
    return {static_cast<std::int32_t>(ProcessResponse::kGenericError), exception.what()};
}

} // namespace

std::vector<unsigned char> Listener::command(wire::kAcknowledgement.size());
std::atomic<bool> Listener::errsend{false};

Listener::Listener(int channel) : m_channel(static_cast<unsigned>(channel)) {}

void Listener::asyncSend(std::string&) {}

void Listener::asyncSend(std::vector<unsigned char>& frame) {
    send(frame, false);
}

void Listener::threadLoop(System::Thread*) {
    setState(Started, false);
    notifyStartCommand();
    setState(Running, false);
    while (getState() < Stopping) {
        m_clock.reset();
        unsigned char length = 0;
        if (!waitForLength(length) || getState() > Connected)
            break;
        notifyStartCommand();
        if (!serve(length))
            break;
    }
    setState(Dead, false);
}

/// False when the channel is unusable or a stop was requested.
bool Listener::waitForLength(unsigned char& length) {
    while (getState() < Stopping) {
        try {
            const Wait outcome = waitOnce(length);
            if (outcome != Wait::TryAgain)
                return outcome == Wait::LengthArrived;
        } catch (const std::exception& exception) {
            printLinkException(m_channel, asResult(exception));
            m_pause.wait();
        }
    }
    return false;
}

Listener::Wait Listener::waitOnce(unsigned char& length) {
    Comm::Handle* port = nullptr;
    if (const DeviceResult result = comm()->device(&port, m_channel); result.failed()) {
        printLoopError(m_channel, result);
        return Wait::Unusable;
    }
    // Looking for the node costs every request some time: a line that has just worked is there.
    if (!std::exchange(m_isLineProven, false) &&
        !m_device.waitFor(port->devicePath().c_str(), StationLine::kDeviceWait))
        return Wait::TryAgain;
    bool open = false;
    DeviceResult result = port->isOpen(open);
    if (result.failed()) {
        printLoopError(m_channel, result);
        return Wait::Unusable;
    }
    if (!open)
        open = announce(*port);
    unsigned count = 0;
    result = receive(*port, open, count, &length, 1, kLengthTimeoutMs);
    if (isTaken(result, open))
        return Wait::TryAgain;
    if (result.failed()) {
        printLoopError(m_channel, result);
        port->close();
        m_pause.wait();
        return Wait::TryAgain;
    }
    if (count == 0)
        return Wait::TryAgain;
    m_pause.reset();
    return Wait::LengthArrived;
}

/// True when the port was open for it; somebody else may have closed it by now.
bool Listener::announce(Comm::Handle& port) {
    const System::Lock lock(l_mutex);
    Answer response;
    // A silent node costs its time here, where nobody else waits for it.
    sReadCmd::getInstance()->readRevisionAhead();
    // The status command may just be answering somebody else: its turn has to be waited for.
    Handler::getInstance()->runExclusively([this, &response] {
        sReadCmd* status = sReadCmd::getInstance();
        status->setListener(this);
        response.reset(status->tavrin_getStartupStatus());
        status->setListener(nullptr);
    });
    bool open = false;
    if (transmit(static_cast<ProcessResponseTavrin&>(*response).data, true, open) == 0) {
        port.close();
        return false;
    }
    setState(Connected, false);
    return open;
}

/// Serves one request. False when the channel is unusable.
bool Listener::serve(unsigned char length) {
    std::vector<unsigned char> response;
    try {
        if (length < wire::kRequestHeader) {
            response = refuseLength(length);
        } else {
            std::vector<unsigned char> frame(length, 0);
            frame.front() = length;
            if (!readBody(frame))
                return true;
            response = runRequest(frame);
        }
    } catch (const std::exception& exception) {
        printLinkException(m_channel, asResult(exception));
        return true;
    }
    return response.empty() || answer(response);
}

/// False when the channel is unusable.
bool Listener::answer(std::vector<unsigned char>& response) {
    const int sent = send(response, true);
    m_isLineProven = sent > 0;
    if (sent != 0)
        return true;
    Comm::Handle* port = nullptr;
    if (const DeviceResult result = comm()->device(&port, m_channel); result.failed()) {
        printLoopError(m_channel, result);
        return false;
    }
    port->close();
    return true;
}

std::vector<unsigned char> Listener::refuseLength(unsigned char length) {
    const std::string text = string_format(kBadLength, length);
    std::vector<unsigned char> frame;
    if (length != 0)
        frame.push_back(length);
    const System::Lock lock(l_mutex);
    std::vector<unsigned char> answer;
    Handler::getInstance()->runExclusively([&] {
        ErrorCmd* error = ErrorCmd::getInstance();
        error->setListener(this);
        auto response = error->generateGenericTavrinError(&frame, text);
        answer = response->data;
        try {
            answer = error->tavrin_exec(&frame, response.release());
        } catch (const std::out_of_range&) {
            // A frame without its three echoed bytes cannot be answered as usual; the station gets what
            // the error command made of it.
        }
        error->setListener(nullptr);
    });
    return answer;
}

/// Fills in what follows the length byte; what does not come in time stays zero. False when there is
/// nothing to run.
bool Listener::readBody(std::vector<unsigned char>& frame) const {
    Comm::Handle* port = nullptr;
    DeviceResult result = comm()->device(&port, m_channel);
    unsigned count = 0;
    if (!result.failed()) {
        constexpr bool kIsOpen = true; // the length has come over it
        result = receive(*port, kIsOpen, count, frame.data() + 1, frame.size() - 1, kBodyTimeoutMs);
        if (isTaken(result, kIsOpen))
            return false;
    }
    if (result.failed()) {
        printLinkException(m_channel, result);
        if (port != nullptr)
            port->close();
        return false;
    }
    if (count == 0)
        port->flush();
    return count != 0;
}

std::vector<unsigned char> Listener::runRequest(std::vector<unsigned char>& frame) {
    const System::Lock lock(l_mutex);
    return Handler::getInstance()->handleCommand(&frame, this);
}

int Listener::send(std::vector<unsigned char>& frame, bool waitAck) {
    bool open = false;
    return transmit(frame, waitAck, open);
}

/// As `send`; `open` tells whether the port was open for it.
int Listener::transmit(std::vector<unsigned char>& frame, bool waitAck, bool& open) {
    const LState state = getState();
    if (state != Running && state != Connected)
        return 0;
    Comm::Handle* port = nullptr;
    if (const DeviceResult result = comm()->device(&port, m_channel); result.failed()) {
        printSendException(result);
        errsend = true;
        return 0;
    }
    if (isToBeHandled(port->isOpen(open)))
        return 0;
    if (!open) {
        const DeviceResult result = port->open(StationLine::kBaud, StationLine::kDataBits,
                                               StationLine::kStopBits, StationLine::kParity);
        if (isToBeHandled(result))
            return 0;
        open = !result.failed();
    }
    if (frame.empty()) {
        printDiagnostic(kEmptyResponse);
        return 0;
    }
    const auto length = static_cast<int>(std::min<std::size_t>(frame.front(), frame.size()));
    if (isToBeHandled(port->write(frame.data(), length)))
        return 0;
    notifyInterruptCommand(&frame);
    return waitAck ? readAcknowledgement(*port, open) : 1;
}

int Listener::readAcknowledgement(Comm::Handle& port, bool isOpen) {
    unsigned count = 0;
    const DeviceResult result = receive(port, isOpen, count, command.data(),
                                        wire::kAcknowledgement.size(), kAcknowledgeTimeoutMs);
    if (isTaken(result, isOpen))
        return -1;
    if (isToBeHandled(result))
        return 0;
    if (count == 0) {
        printDiagnostic(kNoAcknowledgement);
        return -1;
    }
    m_pause.reset();
    if (count != wire::kAcknowledgement.size()) {
        printDiagnostic(string_format(kInvalidCount, count));
        return -1;
    }
    if (!std::equal(command.begin(), command.end(), wire::kAcknowledgement.begin())) {
        printDiagnostic(kNotAnAcknowledgement);
        return -1;
    }
    return 1;
}

/// A channel error while sending is reported and acted on once in the life of the process: the loop's
/// own reading notices a line that has gone, and says so.
bool Listener::isToBeHandled(const DeviceResult& result) {
    if (!result.failed() || errsend.exchange(true))
        return false;
    printSendException(result);
    return true;
}

void Listener::notifyInterruptCommand(const std::vector<unsigned char>* frame) {
    if (!m_clock.isLong())
        return; // the usual case needs no name
    std::string name = "?";
    if (frame != nullptr && frame->size() >= wire::kRequestHeader)
        name = Handler::getInstance()->getHandlerName((*frame)[1]);
    if (name != kDebugFrames && name != kAcknowledgements)
        m_clock.warnIfLong(name.c_str());
}
