#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "manager/ScriptedManager.h"
#include "support/UnitFixture.h"

constexpr char kBusNode[] = "/dev/i2c0";

constexpr unsigned kBusError = 0x07000001;
constexpr unsigned kNoSuchBus = 0x07000005;
constexpr unsigned kUnknownAttribute = 0x0700000B;
constexpr unsigned kSpeedError = 0x0700000D;

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

    std::unique_ptr<ScriptedManager> m_manager;
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

/// The results that a manager may give, with what is told of a failed write or transfer, and of a read.
extern const Rows<int, const char*, const char*> kBusFailures;

/// The bench for a command on the bus.
template <typename Command>
class BusTest : public CommandTest<Command, I2cUnit> {
protected:
    /// That the manager gets this packet and, when it has replied, the station this answer.
    template <typename Line>
    void expectExchange(const Line& line, const Bytes& packet, const Bytes& reply,
                        const std::string& answer) {
        this->m_manager->willAnswer(0, reply);
        this->expectAnswer(line, answer);
        EXPECT_EQ(this->m_manager->lastRequest(), packet);
    }
    /// The same with a success, and what it carries.
    void expectExchange(const Bytes& frame, const Bytes& packet, const Bytes& reply = {},
                        const Bytes& data = {}) {
        this->m_manager->willAnswer(0, reply);
        this->expectDone(frame, data);
        EXPECT_EQ(this->m_manager->lastRequest(), packet);
    }

    void expectNoSuchBus(const Bytes& request, unsigned char bus) {
        this->expectRefused(request, kNoSuchBus, "Bus number " + std::to_string(bus) + " is invalid");
    }

    /// That a request is refused as the manager refuses it.
    template <typename Request>
    void expectFailure(const Request& request, int result, const std::string& text,
                       unsigned code = kBusError) {
        this->m_manager->willAnswer(result, Bytes(300));
        this->m_manager->willAnswer(result, Bytes(300));
        this->expectRefused(request, code, text + ", errorcode: " + std::to_string(result));
    }
};
