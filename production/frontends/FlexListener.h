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
/// A line that is gone is closed, waited for and opened again. The thread ends only when the channel is
/// unusable.
class FlexListener : public AbstractListener {
public:
    explicit FlexListener(int channel);

    void threadLoop(System::Thread* self) override;

    /// Sends a line of text. While a command of this front end runs the line is kept until the command
    /// has ended, because writing waits for the station, and the dispatcher must not.
    void asyncSend(std::string& text) override;
    /// Binary frames cannot travel on this link: dropped.
    void asyncSend(std::vector<unsigned char>& frame) override;
    int getDeviceListNumber() override { return static_cast<int>(m_channel); }

    void notifyStartCommand() { m_clock.start(); }
    /// Warns when the command that the tokens name has been running for long.
    void notifyInterruptCommand(const std::vector<std::vector<char>>& tokens);

    /// Writes the text as a line, and waits until the device has taken it; does nothing when the port is
    /// closed.
    void send(const std::string& text);

private:
    bool serveOnce();
    bool openPort(Comm::Handle& port);
    bool readLine(Comm::Handle& port);
    bool takeByte(Comm::Handle& port, char& byte);
    void runLine();
    void closePort(Comm::Handle& port);
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

    // Touched by the dispatcher while it runs our command, by our thread before and after.
    bool m_commandRuns = false;
    std::vector<std::string> m_kept;
};
