#include "session/LinkSession.h"

#include "client/Failure.h"
#include "client/Request.h"

namespace station {

void LinkSession::begin(const std::string& name, const std::vector<std::string>& arguments) {
    if (m_isLost)
        throw Failure(Failure::Kind::ConnectionLost, "the link is no longer usable");
    m_link.beginRequest();
    m_end = deadline();
    m_isLost = true;
    try {
        send(name, arguments, m_end);
    } catch (const Failure& failure) {
        // A request that cannot travel was not sent.
        m_isLost = failure.kind() != Failure::Kind::InvalidRequest;
        throw;
    }
}

Answer LinkSession::finish(const InfoSink& onInfo) {
    Answer answer = receive(m_end, onInfo);
    m_isLost = false;
    return answer;
}

AsciiSession::AsciiSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption,
                           Client::EmptyAnswer emptyAnswer)
    : LinkSession(std::move(link), timeout, interruption), m_client(this->link(), emptyAnswer) {}

void AsciiSession::takeArrived(const InfoSink& onInfo) {
    m_client.takeArrived(deadline(), onInfo);
}

void AsciiSession::send(const std::string& name, const std::vector<std::string>& arguments,
                        const Deadline& deadline) {
    const Request request(name, arguments);
    m_name = name;
    m_client.send(request, deadline);
}

Answer AsciiSession::receive(const Deadline& deadline, const InfoSink& onInfo) {
    return m_client.receive(m_name, deadline, onInfo);
}

BinarySession::BinarySession(std::unique_ptr<Link> link, Seconds timeout,
                             const Interruption& interruption)
    : LinkSession(std::move(link), timeout, interruption),
      m_client(this->link(), BinaryClient::Observer{[this](const std::string& message) {
                   if (m_onInfo)
                       m_onInfo(message);
               }}) {}

void BinarySession::waitForStartup(const InfoSink& onInfo) {
    m_onInfo = onInfo;
    m_client.waitForStartup(deadline());
}

// The line carries one exchange at a time as a whole, from the frame to the acknowledgement.
void BinarySession::send(const std::string& name, const std::vector<std::string>& arguments,
                         const Deadline&) {
    m_request = BinaryRequest::encode(name, arguments);
}

Answer BinarySession::receive(const Deadline& deadline, const InfoSink& onInfo) {
    m_onInfo = onInfo;
    return m_client.execute(*m_request, deadline);
}

} // namespace station
