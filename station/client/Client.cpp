#include "client/Client.h"

#include "client/Failure.h"

namespace station {

Answer Client::execute(const Request& request, const Deadline& deadline, const InfoSink& onInfo) {
    m_link.send(request.bytes(), deadline);
    for (;;) {
        const std::string line = nextLine(deadline);
        const auto message = infoMessage(line);
        if (!message)
            return parseAnswer(request.name(), line);
        onInfo(*message);
    }
}

std::string Client::nextLine(const Deadline& deadline) {
    for (;;) {
        if (auto line = m_decoder.next())
            return *std::move(line);
        const std::string bytes = m_link.receive(deadline);
        if (bytes.empty())
            throw Failure(
                Failure::Kind::ConnectionLost,
                "malformed answer: the unit closed the connection before the answer was complete");
        m_decoder.feed(bytes);
    }
}

} // namespace station
