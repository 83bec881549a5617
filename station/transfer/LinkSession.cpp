#include "transfer/LinkSession.h"

#include "client/BinaryRequest.h"
#include "client/Failure.h"
#include "client/Request.h"

namespace station {

Answer LinkSession::execute(const std::string& name, const std::vector<std::string>& arguments,
                            const InfoSink& onInfo) {
    if (m_isLost)
        throw Failure(Failure::Kind::ConnectionLost, "the link is no longer usable");
    m_link.beginRequest();
    m_isLost = true;
    try {
        Answer answer = exchange(name, arguments, deadline(), onInfo);
        m_isLost = false;
        return answer;
    } catch (const Failure& failure) {
        // A request that cannot travel was not sent.
        m_isLost = failure.kind() != Failure::Kind::InvalidRequest;
        throw;
    }
}

AsciiSession::AsciiSession(std::unique_ptr<Link> link, Seconds timeout, const Interruption& interruption,
                           Client::EmptyAnswer emptyAnswer)
    : LinkSession(std::move(link), timeout, interruption), m_client(this->link(), emptyAnswer) {}

void AsciiSession::takeArrived(const InfoSink& onInfo) {
    m_client.takeArrived(deadline(), onInfo);
}

Answer AsciiSession::exchange(const std::string& name, const std::vector<std::string>& arguments,
                              const Deadline& deadline, const InfoSink& onInfo) {
    return m_client.execute(Request(name, arguments), deadline, onInfo);
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

Answer BinarySession::exchange(const std::string& name, const std::vector<std::string>& arguments,
                               const Deadline& deadline, const InfoSink& onInfo) {
    m_onInfo = onInfo;
    return m_client.execute(BinaryRequest::encode(name, arguments), deadline);
}

} // namespace station
