#pragma once

#include <functional>
#include <optional>
#include <string>

#include "client/Answer.h"
#include "client/BinaryRequest.h"
#include "client/Deadline.h"
#include "client/Link.h"
#include "client/UnitFrameDecoder.h"

namespace station {

/// Speaks the binary frame protocol over a link: one command at a time, any number in sequence. One
/// thread at a time. The link must outlive the client.
///
/// A unit holds the line until each answer is acknowledged, for 500 ms: every answer frame that arrives
/// is acknowledged at once, whoever it is for; a late acknowledgement does no harm. A unit announces
/// itself with a status frame when it opens its port; that is acknowledged, reported as a message
/// "startup status ..." and never taken for an answer.
class BinaryClient {
public:
    /// Called on the caller's thread as soon as something has arrived.
    struct Observer {
        /// The text of a debug frame, or a note that begins with "station: " or "startup status ".
        std::function<void(const std::string& message)> info;
        /// Every frame, of whatever kind, after the request was sent and before its text is told.
        std::function<void(const UnitFrame& frame)> frame = [](const UnitFrame&) {};
    };

    BinaryClient(Link& link, Observer observer);

    /// Blocks until the unit announces itself; what comes before that is told and dropped. Throws
    /// `Failure`: `TimedOut` or `ConnectionLost`.
    void waitForStartup(const Deadline& deadline);

    /// Takes what has arrived before, sends the request and blocks until it is answered; a request that
    /// is never answered succeeds when `kQuietTime` has passed. After raw bytes any answer frame will
    /// do: the last one counts of those that come until nothing has come for `kQuietTime`. A refusal by
    /// the unit is an answer. Throws `Failure`: `TimedOut`, `ConnectionLost` or `MalformedAnswer`; after
    /// that neither client nor link may be used again.
    Answer execute(const BinaryRequest& request, const Deadline& deadline);

private:
    void takeArrived(const Deadline& deadline);
    void takeUnasked(const UnitFrame& frame, const Deadline& deadline);
    Answer receiveAnswer(const BinaryRequest& request, const Deadline& deadline);
    Answer receiveRaw(const BinaryRequest& request, const Deadline& deadline);
    [[noreturn]] void failLate() const;

    std::optional<UnitFrame> nextFrame(const Deadline& moment);
    std::optional<UnitFrame> nextUnasked(const Deadline& moment, const Deadline& deadline);
    std::optional<UnitFrame> decodeOrDrop();
    bool receiveMore(const Deadline& moment);
    void dropReceived();

    bool isAnnouncement(const BinaryRequest& request, const UnitFrame& frame) const;
    void reportDebug(const UnitFrame& frame);
    void reportStartup(const UnitFrame& frame);
    void acknowledge(const Deadline& deadline);

    Link& m_link;
    Observer m_observer;
    UnitFrameDecoder m_decoder;
    std::size_t m_preludeLength = 0; // how many texts of the prelude the last frames were
    bool m_announcedAfterRequest = false;
};

} // namespace station
