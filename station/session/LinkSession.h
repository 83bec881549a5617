#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/BinaryClient.h"
#include "client/BinaryRequest.h"
#include "client/Client.h"
#include "session/InterruptibleLink.h"
#include "session/Session.h"

namespace station {

/// A session over a link of its own. Each request has the time-out for itself. After a failure that
/// leaves open what the link will bring next, every further command fails with `ConnectionLost`.
class LinkSession : public Session {
public:
    void begin(const std::string& name, const std::vector<std::string>& arguments) final;
    Answer finish(const InfoSink& onInfo) final;

protected:
    LinkSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption)
        : m_link(std::move(link), interruption), m_timeout(timeout) {}

    virtual void send(const std::string& name, const std::vector<std::string>& arguments,
                      const Deadline& deadline) = 0;
    virtual Answer receive(const Deadline& deadline, const InfoSink& onInfo) = 0;

    InterruptibleLink& link() { return m_link; }
    Deadline deadline() const { return Deadline::after(m_timeout); }

private:
    InterruptibleLink m_link;
    Seconds m_timeout;
    Deadline m_end = Deadline::after(m_timeout); // of the command that is under way
    bool m_isLost = false;                       // also while one is
};

/// Commands as lines of text.
class AsciiSession : public LinkSession {
public:
    AsciiSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption,
                 Client::EmptyAnswer emptyAnswer);

    /// For a line that outlives its stations: takes what came before.
    void takeArrived(const InfoSink& onInfo);

private:
    void send(const std::string& name, const std::vector<std::string>& arguments,
              const Deadline& deadline) override;
    Answer receive(const Deadline& deadline, const InfoSink& onInfo) override;

    std::string m_name; // of the command that is under way
    Client m_client;
};

/// Commands as binary frames.
class BinarySession : public LinkSession {
public:
    BinarySession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption);

    void waitForStartup(const InfoSink& onInfo);

private:
    void send(const std::string& name, const std::vector<std::string>& arguments,
              const Deadline& deadline) override;
    Answer receive(const Deadline& deadline, const InfoSink& onInfo) override;

    std::optional<BinaryRequest> m_request; // of the command that is under way
    InfoSink m_onInfo;                      // of the same
    BinaryClient m_client;
};

} // namespace station
