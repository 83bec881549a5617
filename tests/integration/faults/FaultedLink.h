#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "line/Adapter.h"
#include "support/CallFaults.h"
#include "support/Connection.h"
#include "support/Daemon.h"

/// A daemon whose calls can go wrong, and a station on one of its links. What a station receives is
/// given as it came; only what the link itself says is left out: a greeting, an announcement. Before
/// `begin` there is no station over TCP.
class FaultedLink {
public:
    virtual ~FaultedLink() = default;
    FaultedLink(const FaultedLink&) = delete;
    FaultedLink& operator=(const FaultedLink&) = delete;

    /// A station that has just come.
    virtual void begin() {}

    /// Asks, and waits for the whole answer. When the faults are over before it is there, they are
    /// stopped, and `received` has all that came of the request; nothing is on its way any more then.
    std::string ask(const std::string& request);

    /// Whether that is a reason with its code.
    virtual bool isRefusal(const std::string& request, const std::string& received) const = 0;

    /// Whether the connection has ended, or the line was opened again, since the last request.
    bool hasEnded() const { return m_hasEnded; }

    /// Stops the faults. Returns how many calls could have gone wrong.
    std::uint64_t stopFaults();

    /// Whether no answer is right, too.
    virtual bool mayBeSilent() const { return m_hasEnded; }

    /// Whether such faults are to be outlived with the right answer, or a refusal.
    virtual bool isOutlived(Fault /*fault*/) const { return true; }

    virtual Daemon& daemon() = 0;

    CallFaults faults;

protected:
    FaultedLink() = default;

    /// Whether something may be missing because it could not be written: what a line does not take
    /// is lost.
    bool hasLostText() const;

    virtual const ByteStream& station() const = 0;
    /// Takes the next piece that there is: a line, a frame, or what has come of it before the end.
    virtual std::string receivePiece() = 0;
    virtual bool isWhole(const std::string& received) const = 0;
    /// What is to be done with an answer. When the faults are over, they are stopped, and what was still
    /// on its way is added.
    virtual std::string settle(std::string received);
    /// Adds what is still on its way, now that nothing goes wrong any more.
    virtual std::string receiveRest(std::string received) { return received; }

    bool m_hasEnded = false;
};

/// Over TCP.
class FaultedNetwork : public FaultedLink {
public:
    FaultedNetwork();
    void begin() override;
    bool isRefusal(const std::string& request, const std::string& received) const override;
    Daemon& daemon() override { return m_daemon; }

protected:
    const ByteStream& station() const override { return *m_station; }
    std::string receivePiece() override;
    bool isWhole(const std::string& received) const override;
    std::string settle(std::string received) override;

private:
    Daemon m_daemon;
    std::optional<Connection> m_station;
};

/// Over the station's line, in lines of text.
class FaultedAsciiLine : public FaultedLink {
public:
    FaultedAsciiLine();
    bool mayBeSilent() const override { return hasEnded() || hasLostText(); }
    bool isRefusal(const std::string& request, const std::string& received) const override;
    Daemon& daemon() override { return m_daemon; }

protected:
    const ByteStream& station() const override { return m_adapter; }
    std::string receivePiece() override;
    bool isWhole(const std::string& received) const override;
    std::string receiveRest(std::string received) override;

private:
    bool receiveUntilProbed(const std::string& probe, std::string& received);

    Adapter m_adapter;
    Daemon m_daemon;
    int m_probes = 0;
};

/// Over the station's line, in frames.
class FaultedBinaryLine : public FaultedLink {
public:
    FaultedBinaryLine();
    bool mayBeSilent() const override { return hasEnded() || hasLostText(); }
    /// What the line's driver does not take at once is lost.
    bool isOutlived(Fault fault) const override { return fault != Fault::HalfWrite; }
    bool isRefusal(const std::string& request, const std::string& received) const override;
    Daemon& daemon() override { return m_daemon; }

protected:
    const ByteStream& station() const override { return m_adapter; }
    std::string receivePiece() override;
    bool isWhole(const std::string& received) const override;
    std::string settle(std::string received) override;
    std::string receiveRest(std::string received) override;

private:
    bool isTaken() const;
    bool receiveUntilProbed(const std::string& probe, std::string& received);

    Adapter m_adapter;
    Daemon m_daemon;
    unsigned char m_probes = 0;
};
