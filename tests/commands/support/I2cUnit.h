#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "core/Handler.h"
#include "manager/ScriptedManager.h"
#include "support/UnitFixture.h"

constexpr char kBusNode[] = "/dev/i2c0";

/// A simulated unit with a scripted manager behind its I2C bus. A case finds the bus closed.
class I2cUnit : public UnitFixture {
protected:
    I2cUnit();

    /// The bus's node is not there any more.
    void removeBus();
    /// Another manager takes the place of the one that is there.
    void comeBack();

    /// What the bus says about itself now.
    static bool stopCondition();
    static unsigned busSpeed();

    /// Through the Handler, as a front end would.
    Bytes send(Bytes request) { return handler().handleCommand(&request, &m_listener); }
    std::string send(const Tokens& list) { return handler().handleCommand(list, &m_listener); }

    /// That the next attempt is refused on the wire: the debug frame, then the frame of the error.
    void expectErrorFrame(const Bytes& request, unsigned code, const std::string& text);
    /// The same as lines.
    void expectErrorLine(const Tokens& list, unsigned code, const std::string& text);

    std::unique_ptr<ScriptedManager> m_manager;
    RecordingListener m_listener;

private:
    static Handler& handler() { return *Handler::getInstance(); }
};

/// The manager's requests, with the stop condition on or off.
Bytes writeRequest(std::uint32_t address, const Bytes& data, std::uint32_t stop = 1);
Bytes readRequest(std::uint32_t address, std::uint32_t count, std::uint32_t stop = 1);
Bytes transferRequest(std::uint32_t address, const Bytes& data, std::uint32_t count,
                      std::uint32_t stop = 1);
Bytes speedRequest(std::uint32_t speed);

/// What a manager answers to a read or a transfer for its reply parts.
Bytes readReply(const Bytes& data);
Bytes transferReply(const Bytes& data);
