#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "core/AbstractListener.h"
#include "devices/CommHandler.h"
#include "frontends/CommandClock.h"
#include "frontends/LineAssembler.h"
#include "frontends/RetryPause.h"
#include "platform/PathWait.h"

/// Serves the test station over a serial channel in the ASCII line protocol. Whenever it opens the port
/// it greets the station with a banner; then it reads a command line, has it run and answers.
///
/// A line that is gone is closed, waited for and opened again. A port that somebody else closes is
/// opened again at once; one that somebody else has opened is read on as it is. The thread ends only
/// when the channel is unusable.
class FlexListener : public AbstractListener {
public:
    explicit FlexListener(int channel);

    void threadLoop(System::Thread* self) override;

    /// Sends a line of text at once, without waiting for the station: what the port does not take yet
    /// goes out ahead of the answer.
    void asyncSend(std::string& text) override;
    /// Binary frames cannot travel on this link: dropped.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return static_cast<int>(m_channel); }

    void notifyStartCommand() { m_clock.start(); }
    /// Warns when the command that the tokens name has been running for long.
    void notifyInterruptCommand(const std::vector<std::vector<char>>& tokens);

    /// Writes the text as a line, without waiting for the station; does nothing when the port is closed.
    void send(const std::string& text);

private:
    bool serveOnce();
    void serve(Comm::Handle& port);
    bool openPort(Comm::Handle& port);
    DeviceResult readLine(Comm::Handle& port);
    DeviceResult takeByte(Comm::Handle& port, char& byte);
    void runLine();
    void sendAnswer(const std::string& text);
    void closePort(Comm::Handle& port);
    void forgetInput();
    Comm::Handle* openedPort() const;

    CommandClock m_clock;
    unsigned m_channel;
    LineAssembler m_assembler;
    System::PathWait m_device;
    RetryPause m_pause;

    // What one arrival brought and no line has taken yet.
    std::array<char, 256> m_received{};
    std::size_t m_receivedCount = 0;
    std::size_t m_taken = 0;
};
