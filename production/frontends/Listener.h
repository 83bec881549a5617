#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "core/AbstractListener.h"
#include "devices/CommHandler.h"
#include "frontends/CommandClock.h"
#include "frontends/RetryPause.h"
#include "platform/PathWait.h"

/// Serves the test station over a serial channel in the binary protocol. Whenever it opens the port it
/// announces itself with the startup status; then it reads a request by its length byte, has it run,
/// answers, and waits for the acknowledgement before it reads on.
///
/// A line that is gone is closed, waited for and opened again. A port that somebody else closes is
/// opened and announced again at once; one that somebody else has opened is read on as it is. The thread
/// ends only when the channel is unusable.
class Listener : public AbstractListener {
public:
    explicit Listener(int channel);

    void threadLoop(System::Thread* self) override;

    /// Text cannot travel on this link: dropped.
    void asyncSend(std::string& text) override;
    /// Sends the frame at once. The port does not block,
    /// so a station that does not read holds up nobody.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return static_cast<int>(m_channel); }

    void notifyStartCommand() { m_clock.start(); }
    /// Warns when the command that `frame` belongs to has been running for long; `frame` may be null.
    void notifyInterruptCommand(const std::vector<unsigned char>* frame);

    /// Sends as many bytes as the frame's first byte says. 1 sent, and acknowledged if `waitAck`; 0 not
    /// sent; -1 sent, but not properly acknowledged within 500 ms. The link's thread, or the
    /// dispatcher's without `waitAck`.
    int send(std::vector<unsigned char>& frame, bool waitAck);

private:
    enum class Wait { LengthArrived, TryAgain, Unusable };

    bool waitForLength(unsigned char& length);
    Wait waitOnce(unsigned char& length);
    bool announce(Comm::Handle& port);
    bool serve(unsigned char length);
    bool answer(std::vector<unsigned char>& response);
    std::vector<unsigned char> refuseLength(unsigned char length);
    std::vector<unsigned char> runRequest(std::vector<unsigned char> frame);
    bool readBody(unsigned char* frame, unsigned char length) const;

    int transmit(std::vector<unsigned char>& frame, bool waitAck, bool& open);
    int readAcknowledgement(Comm::Handle& port, bool isOpen);
    bool isToBeHandled(const DeviceResult& result);

    CommandClock m_clock;
    unsigned m_channel;
    System::PathWait m_device;
    RetryPause m_pause;
    bool m_isLineProven = false; // an acknowledgement has just come over it

    static std::vector<unsigned char> command; // the acknowledgement
    static std::atomic<bool> errsend;          // a channel error has been reported
};
