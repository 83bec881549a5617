#include "frontends/FlexListener.h"

#include <exception>
#include <utility>

#include "core/BuildStamp.h"
#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "core/StringFormat.h"
#include "core/TokenText.h"
#include "frontends/CommandLexer.h"
#include "frontends/StationLine.h"
#include "platform/Memory.h"
#include "wire/Line.h"

namespace {

constexpr char kException[] = "~ ### ~ Exception: ID: 0x%X DESC: %s";
constexpr char kNothingRead[] = "Nothing was read";
constexpr char kBanner[] = "Info Production Test Server (Build %s)";

std::string framed(const std::string& text) {
    std::string line;
    wire::appendAnswer(line, text);
    return line;
}

void printException(std::int32_t code, const char* description) {
    printDiagnostic(kException, static_cast<unsigned>(code), description);
}

void printException(const DeviceResult& result) {
    printException(result.code, result.message.c_str());
}

} // namespace

FlexListener::FlexListener(int channel) : m_channel(static_cast<unsigned>(channel)) {}

void FlexListener::asyncSend(std::string& text) {
    send(text);
}

void FlexListener::asyncSend(std::vector<unsigned char>&) {}

void FlexListener::threadLoop(System::Thread*) {
    setState(Started, false);
    notifyStartCommand();
    setState(Running, false);
    while (getState() <= Connected && serveOnce()) {
    }
    setState(Dead, false);
}

/// One round. False when the channel is unusable.
bool FlexListener::serveOnce() {
    Comm::Handle* port = nullptr;
    try {
        const DeviceResult result = comm()->device(&port, m_channel);
        if (!result.failed()) {
            serve(*port);
            return true;
        }
        printException(result);
    } catch (const std::exception& exception) {
        // Most likely a line that does not fit into memory: where it would have ended is anybody's
        // guess. Or a banner that did not: the port is opened again, with another one.
        printException(static_cast<std::int32_t>(ProcessResponse::kGenericError), exception.what());
        if (port != nullptr)
            closePort(*port);
        return true;
    }
    return false;
}

/// The port is opened if need be, and one command is read and answered.
void FlexListener::serve(Comm::Handle& port) {
    if (!m_device.waitFor(port.devicePath().c_str(), StationLine::kDeviceWait) || !openPort(port))
        return;
    const DeviceResult result = readLine(port);
    if (!result.failed())
        runLine();
    else if (result.code == DeviceError::kNotUsable)
        forgetInput(); // somebody else has closed the port, and perhaps opened it: it is theirs
    else
        closePort(port);
}

bool FlexListener::openPort(Comm::Handle& port) {
    bool open = false;
    DeviceResult result = port.isOpen(open);
    if (!result.failed() && open)
        return true;
    if (!result.failed())
        result = port.open(StationLine::kBaud, StationLine::kDataBits, StationLine::kStopBits,
                           StationLine::kParity);
    if (result.failed()) {
        printException(result);
        closePort(port);
        return false;
    }
    send(string_format(kBanner, getDateTimeString()));
    return true;
}

void FlexListener::closePort(Comm::Handle& port) {
    port.close();
    forgetInput();
    m_pause.wait();
}

void FlexListener::forgetInput() {
    m_receivedCount = 0;
    m_taken = 0;
    m_assembler.reset();
}

/// Fails when the line has gone, or the port is no longer the one that was read before.
DeviceResult FlexListener::readLine(Comm::Handle& port) {
    m_assembler.reset();
    char byte = 0;
    do {
        if (DeviceResult result = takeByte(port, byte); result.failed())
            return result;
    } while (!m_assembler.append(&byte, 1));
    return {};
}

DeviceResult FlexListener::takeByte(Comm::Handle& port, char& byte) {
    if (m_taken == m_receivedCount) {
        unsigned count = 0;
        DeviceResult result =
            port.receive(count, m_received.data(), static_cast<int>(m_received.size()), 0);
        if (result.failed())
            return result;
        // Waiting may end with an event of another kind, which would come back at once, for ever.
        if (count == 0)
            return {static_cast<std::int32_t>(ProcessResponse::kGenericError), kNothingRead};
        m_pause.reset();
        m_receivedCount = count;
        m_taken = 0;
    }
    byte = m_received[m_taken++];
    return {};
}

void FlexListener::runLine() {
    const bool isLong = m_assembler.line().size() > CommandLexer::kLongLine;
    std::vector<std::vector<char>> tokens = CommandLexer::scan(m_assembler);
    const std::vector<std::vector<char>> name(tokens.begin(), tokens.begin() + (tokens.empty() ? 0 : 1));
    notifyStartCommand();
    const std::string answer = Handler::getInstance()->handleCommand(std::move(tokens), this);
    notifyInterruptCommand(name);
    if (!answer.empty())
        sendAnswer(answer);
    if (isLong)
        System::returnFreedMemory();
}

void FlexListener::send(const std::string& text) {
    if (Comm::Handle* port = openedPort())
        port->post(framed(text));
}

/// Waits until the station's line has taken it: the next request is read only then.
void FlexListener::sendAnswer(const std::string& text) {
    if (Comm::Handle* port = openedPort())
        port->transmit(framed(text));
}

/// Null when there is no port to send to.
Comm::Handle* FlexListener::openedPort() const {
    Comm::Handle* port = nullptr;
    bool open = false;
    if (comm()->device(&port, m_channel).failed() || port->isOpen(open).failed() || !open)
        return nullptr;
    return port;
}

void FlexListener::notifyInterruptCommand(const std::vector<std::vector<char>>& tokens) {
    if (!tokens.empty())
        m_clock.warnIfLong(tokenText(tokens.front()).c_str());
}
