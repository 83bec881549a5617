#pragma once

#include <functional>
#include <string>

#include "client/Answer.h"
#include "client/AnswerDecoder.h"
#include "client/Deadline.h"
#include "client/Link.h"
#include "client/Request.h"

namespace station {

/// Speaks the ASCII line protocol over a link: one command at a time, any number in sequence. One thread
/// at a time. The link must outlive the client.
class Client {
public:
    /// Called on the caller's thread with the message of each `Info` line, as soon as it has arrived.
    using InfoSink = std::function<void(const std::string& message)>;

    explicit Client(Link& link) : m_link(link) {}

    /// Sends a command and blocks until its final line. A refusal by the unit is an answer. Throws
    /// `Failure`: `TimedOut`, `ConnectionLost` or `MalformedAnswer`; after that nothing is known of what
    /// the link will bring next, and neither client nor link may be used again.
    Answer execute(const Request& request, const Deadline& deadline, const InfoSink& onInfo);

private:
    std::string nextLine(const Deadline& deadline);

    Link& m_link;
    AnswerDecoder m_decoder;
};

} // namespace station
