#pragma once

#include <memory>
#include <string>
#include <vector>

#include "client/BinaryClient.h"
#include "client/Client.h"
#include "transfer/InterruptibleLink.h"
#include "transfer/Session.h"

namespace station {

/// A session over a link of its own. Each request has the time-out for itself. After a failure that
/// leaves open what the link will bring next, every further command fails with `ConnectionLost`.
class LinkSession : public Session {
public:
    Answer execute(const std::string& name, const std::vector<std::string>& arguments,
                   const InfoSink& onInfo) final;

protected:
    LinkSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption)
        : m_link(std::move(link), interruption), m_timeout(timeout) {}

    virtual Answer exchange(const std::string& name, const std::vector<std::string>& arguments,
                            const Deadline& deadline, const InfoSink& onInfo) = 0;

    InterruptibleLink& link() { return m_link; }
    Deadline deadline() const { return Deadline::after(m_timeout); }

private:
    InterruptibleLink m_link;
    Seconds m_timeout;
    bool m_isLost = false;
};

/// Commands as lines of text.
class AsciiSession : public LinkSession {
public:
    AsciiSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption,
                 Client::EmptyAnswer emptyAnswer);

    /// For a line that outlives its stations: takes what came before.
    void takeArrived(const InfoSink& onInfo);

private:
    Answer exchange(const std::string& name, const std::vector<std::string>& arguments,
                    const Deadline& deadline, const InfoSink& onInfo) override;

    Client m_client;
};

/// Commands as binary frames.
class BinarySession : public LinkSession {
public:
    BinarySession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption);

    void waitForStartup(const InfoSink& onInfo);

private:
    Answer exchange(const std::string& name, const std::vector<std::string>& arguments,
                    const Deadline& deadline, const InfoSink& onInfo) override;

    InfoSink m_onInfo; // of the command that is under way
    BinaryClient m_client;
};

} // namespace station
