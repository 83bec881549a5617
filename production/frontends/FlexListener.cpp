#include "frontends/FlexListener.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/BuildStamp.h"
#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "core/StringFormat.h"
#include "core/TokenText.h"
#include "frontends/CommandLexer.h"
#include "frontends/LineFraming.h"
#include "frontends/StationLine.h"
#include "platform/Memory.h"

namespace {

constexpr char kException[] = "~ ### ~ Exception: ID: 0x%X DESC: %s";
constexpr char kBanner[] = "Info Production Test Server (Build %s)";

// A write counts in int.
constexpr std::size_t kLargestWrite = std::size_t{1} << 30;

void printException(const DeviceResult& result) {
    printDiagnostic(string_format(kException, result.code, result.message.c_str()));
}

} // namespace

FlexListener::FlexListener(int channel) : m_channel(static_cast<unsigned>(channel)) {}

void FlexListener::asyncSend(std::string& text) {
    if (m_commandRuns)
        m_kept.push_back(text);
    else
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

/// One round: the port is opened if need be, and one command is read and answered. False when the
/// channel is unusable.
bool FlexListener::serveOnce() {
    Comm::Handle* port = nullptr;
    if (const DeviceResult result = comm()->device(&port, m_channel); result.failed()) {
        printException(result);
        return false;
    }
    if (!m_device.waitFor(port->devicePath().c_str(), StationLine::kDeviceWait))
        return true;
    if (!openPort(*port))
        return true;
    try {
        if (readLine(*port))
            runLine();
        else
            closePort(*port);
    } catch (const std::exception& exception) {
        // Most likely a line that does not fit into memory; where it would have ended is anybody's
        // guess.
        printException({static_cast<std::int32_t>(ProcessResponse::kGenericError), exception.what()});
        closePort(*port);
    }
    return true;
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
    m_receivedCount = 0;
    m_taken = 0;
    m_assembler.reset();
    m_pause.wait();
}

/// False when the line has gone.
bool FlexListener::readLine(Comm::Handle& port) {
    m_assembler.reset();
    char byte = 0;
    do {
        if (!takeByte(port, byte))
            return false;
    } while (!m_assembler.append(&byte, 1));
    return true;
}

bool FlexListener::takeByte(Comm::Handle& port, char& byte) {
    if (m_taken == m_receivedCount) {
        unsigned count = 0;
        if (port.receive(count, m_received.data(), static_cast<int>(m_received.size())).failed())
            return false;
        m_pause.reset();
        m_receivedCount = count;
        m_taken = 0;
    }
    byte = m_received[m_taken++];
    return true;
}

void FlexListener::runLine() {
    std::vector<std::vector<char>> tokens = CommandLexer::scan(m_assembler.line());
    const std::vector<std::vector<char>> name(tokens.begin(), tokens.begin() + (tokens.empty() ? 0 : 1));
    notifyStartCommand();
    m_commandRuns = true;
    std::string answer;
    std::exception_ptr failure;
    try {
        answer = Handler::getInstance()->handleCommand(std::move(tokens), this);
    } catch (...) {
        failure = std::current_exception();
    }
    m_commandRuns = false;
    for (const std::string& text : std::exchange(m_kept, {}))
        send(text);
    if (failure)
        std::rethrow_exception(failure);
    notifyInterruptCommand(name);
    if (!answer.empty())
        send(answer);
    if (m_assembler.line().size() > CommandLexer::kLongLine) {
        m_assembler.reset();
        System::returnFreedMemory();
    }
}

void FlexListener::send(const std::string& text) {
    Comm::Handle* port = openedPort();
    if (port == nullptr)
        return;
    std::string line;
    LineFraming::append(line, text);
    for (std::size_t at = 0; at < line.size(); at += kLargestWrite)
        port->write(line.data() + at, static_cast<int>(std::min(kLargestWrite, line.size() - at)));
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
