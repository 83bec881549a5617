#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

#include "line/Adapter.h"
#include "model/Generator.h"
#include "model/Unit.h"
#include "support/Connection.h"
#include "support/Daemon.h"

/// The real daemon in the simulated unit of the test: link 0 is the station's line, the others are
/// connections.
class LiveUnit : public Unit {
public:
    static constexpr int kStationLink = 0;
    static constexpr std::size_t kConnections = 3;

    /// Looks at the media, which must be as they were made. Starts nothing yet.
    explicit LiveUnit(bool lineCarriesFrames);

    void restart() override;
    Model model() const override;
    std::string exchange(const Request& request, const Model::Prediction& expected) override;
    bool shows(const Effect& effect) override;
    std::string target(int link) const override;

    const Daemon& daemon() const { return *m_daemon; }
    Links links() const;

    /// How long an answer may take from now on.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

    /// Whether nothing has come but what was asked for.
    bool isSilent();

private:
    void startDaemon();
    void resetFiles() const;
    void resetDisplays() const;
    void resetChips() const;
    std::string exchangeFrame(const Request& request, const Model::Prediction& expected);
    std::string exchangeLine(const ByteStream& link, const Request& request,
                             const Model::Prediction& expected) const;
    std::string leftover(const ByteStream& link) const;

    bool m_lineCarriesFrames;
    std::atomic<std::chrono::milliseconds> m_patience;
    Adapter m_adapter;
    std::vector<Connection> m_connections;
    std::unique_ptr<Daemon> m_daemon;
};
