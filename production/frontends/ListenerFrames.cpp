// How a frame reaches the station: written, and acknowledged.
#include <algorithm>

#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "frontends/Listener.h"
#include "frontends/SharedPort.h"
#include "frontends/StationLine.h"
#include "wire/Frame.h"

namespace {

// The code stands in decimal here.
constexpr char kSendException[] = "~ ### ~ Exception: ID: 0x%d DESC: %s";
constexpr char kEmptyResponse[] = "WARNING: Reponse size is 0";
constexpr char kNoAcknowledgement[] = "NO ACK message received from the client (not critical)";
constexpr char kInvalidCount[] = "Received Data invalid: %u";
constexpr char kNotAnAcknowledgement[] = "Received not an Ack-Message";

void printSendException(const DeviceResult& result) {
    printDiagnostic(kSendException, result.code, result.message.c_str());
}

} // namespace

std::vector<unsigned char> Listener::command(wire::kAcknowledgement.size());
std::atomic<bool> Listener::errsend{false};

void Listener::asyncSend(std::string&) {}

void Listener::asyncSend(std::vector<unsigned char>& frame) {
    send(frame, false);
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
    constexpr unsigned kTimeoutMs = 500;
    unsigned count = 0;
    const DeviceResult result = SharedPort::receive(port, isOpen, count, command.data(),
                                                    wire::kAcknowledgement.size(), kTimeoutMs);
    if (SharedPort::isTaken(result, isOpen))
        return -1;
    if (isToBeHandled(result))
        return 0;
    if (count == 0) {
        printDiagnostic(kNoAcknowledgement);
        return -1;
    }
    m_pause.reset();
    if (count != wire::kAcknowledgement.size()) {
        printDiagnostic(kInvalidCount, count);
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
    // What may well be sent long after its command started.
    constexpr char kDebugFrames[] = "d";
    constexpr char kAcknowledgements[] = "0x06";
    if (!m_clock.isLong())
        return; // the usual case needs no name
    std::string name = "?";
    if (frame != nullptr && frame->size() >= wire::kRequestHeader)
        name = Handler::getInstance()->getHandlerName((*frame)[1]);
    if (name != kDebugFrames && name != kAcknowledgements)
        m_clock.warnIfLong(name.c_str());
}
