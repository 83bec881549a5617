#include "frontends/Listener.h"

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "commands/ErrorCmd.h"
#include "commands/sReadCmd.h"
#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "core/StringFormat.h"
#include "frontends/SharedPort.h"
#include "frontends/StationLine.h"
#include "wire/Frame.h"

namespace {

constexpr unsigned kLengthTimeoutMs = 1000;
constexpr unsigned kBodyTimeoutMs = 500;

constexpr char kThreadLoopError[] = "Error in Listener thead loop";
constexpr char kLinkException[] = "%u~ ### ~ Exception: ID: 0x%X DESC: %s";
constexpr char kBadLength[] = "Commandlen of %d not allowed";

// Held for every dispatch and for the exchange of the startup status.
System::Mutex l_mutex(System::Mutex::Normal);

void printLinkException(unsigned channel, std::int32_t code, const char* description) {
    printDiagnostic(kLinkException, channel, static_cast<unsigned>(code), description);
}

void printLinkException(unsigned channel, const DeviceResult& result) {
    printLinkException(channel, result.code, result.message.c_str());
}

void printLinkException(unsigned channel, const std::exception& exception) {
    printLinkException(channel, static_cast<std::int32_t>(ProcessResponse::kGenericError),
                       exception.what());
}

void printLoopError(unsigned channel, const DeviceResult& result) {
    printDiagnostic(kThreadLoopError);
    printLinkException(channel, result);
}

} // namespace

Listener::Listener(int channel) : m_channel(static_cast<unsigned>(channel)) {}

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
            printLinkException(m_channel, exception);
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
    result = SharedPort::receive(*port, open, count, &length, 1, kLengthTimeoutMs);
    if (SharedPort::isTaken(result, open))
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
    int sent = 0;
    try {
        sent = transmit(static_cast<ProcessResponseTavrin&>(*response).data, true, open);
    } catch (...) {
        port.close(); // opened again, it is announced
        throw;
    }
    if (sent == 0) {
        port.close();
        return false;
    }
    setState(Connected, false);
    return open;
}

/// Serves one request. False when the channel is unusable.
bool Listener::serve(unsigned char length) {
    // On the stack: whatever happens now, all of the request has been taken off the line before.
    std::array<unsigned char, wire::kLongestFrame> request{length};
    if (length >= wire::kRequestHeader && !readBody(request.data(), length))
        return true;
    try {
        std::vector<unsigned char> response =
            length < wire::kRequestHeader ? refuseLength(length)
                                          : runRequest({request.begin(), request.begin() + length});
        return response.empty() || answer(response);
    } catch (const std::exception& exception) {
        printLinkException(m_channel, exception);
        return true;
    }
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
/// nothing to run: what of the request may still come has been thrown away, or belongs to a line that
/// was closed.
bool Listener::readBody(unsigned char* frame, unsigned char length) const {
    Comm::Handle* port = nullptr;
    try {
        DeviceResult result = comm()->device(&port, m_channel);
        unsigned count = 0;
        if (!result.failed()) {
            constexpr bool kIsOpen = true; // the length has come over it
            result = SharedPort::receive(*port, kIsOpen, count, frame + 1, length - std::size_t{1},
                                         kBodyTimeoutMs);
            if (SharedPort::isTaken(result, kIsOpen))
                return false;
        }
        if (!result.failed()) {
            if (count == 0)
                port->flush();
            return count != 0;
        }
        printLinkException(m_channel, result);
    } catch (const std::exception& exception) {
        printLinkException(m_channel, exception);
    }
    if (port != nullptr)
        port->close();
    return false;
}

std::vector<unsigned char> Listener::runRequest(std::vector<unsigned char> frame) {
    const System::Lock lock(l_mutex);
    return Handler::getInstance()->handleCommand(&frame, this);
}
