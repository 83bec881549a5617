#pragma once

#include <functional>
#include <optional>
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
    /// Called on the caller's thread with the message of each `Info` line and with a unit's greeting, as
    /// soon as it has arrived.
    using InfoSink = std::function<void(const std::string& message)>;

    /// What a unit does when there is nothing to answer, as for `ack`: it sends an empty line, or
    /// nothing at all. The latter is what it does on a serial line.
    enum class EmptyAnswer { Sent, NotSent };

    explicit Client(Link& link, EmptyAnswer emptyAnswer = EmptyAnswer::Sent)
        : m_link(link), m_emptyAnswer(emptyAnswer) {}

    /// Takes what a line that outlives its stations has kept from before, until nothing has come for a
    /// moment: greetings and messages go to `onInfo`, and so does a note of what else is dropped. Throws
    /// `Failure` (`ConnectionLost`).
    void takeArrived(const Deadline& deadline, const InfoSink& onInfo);

    /// Sends a command and blocks until its final line; for `ack` on a line that does not carry empty
    /// answers, until nothing has come for `kQuietTime`. A refusal by the unit is an answer. Throws
    /// `Failure`: `TimedOut`, `ConnectionLost` or `MalformedAnswer`; after that nothing is known of what
    /// the link will bring next, and neither client nor link may be used again.
    Answer execute(const Request& request, const Deadline& deadline, const InfoSink& onInfo);

    /// The two halves of `execute`, for who has something else to do meanwhile.
    void send(const Request& request, const Deadline& deadline);
    Answer receive(const std::string& name, const Deadline& deadline, const InfoSink& onInfo);

private:
    bool receiveMore(const Deadline& moment);
    std::optional<std::string> nextLine(const Deadline& moment);
    bool takeDecoded(const InfoSink& onInfo);

    Link& m_link;
    EmptyAnswer m_emptyAnswer;
    AnswerDecoder m_decoder;
};

} // namespace station
