#include "client/BinaryClient.h"

#include <array>
#include <string_view>
#include <utility>

#include "client/Failure.h"
#include "client/Hex.h"
#include "client/QuietTime.h"
#include "client/StatusPayload.h"

namespace station {

namespace {

constexpr std::string_view kAcknowledgement = "\x02\x06";

// What a unit says before it announces itself, each time but the first.
constexpr std::array<std::string_view, 2> kPrelude = {"Startup State sent but requested again",
                                                      "Probaby due to connection cut"};

// D3 of the first status that a unit sends after its start, which is always an announcement.
constexpr unsigned char kFirstStatus = 0;

/// When to stop listening for what may come without having been asked for.
Deadline quietUntil(const Deadline& deadline) {
    return Deadline::earlier(Deadline::after(kQuietTime), deadline);
}

Answer noAnswer() {
    return Answer{std::string(), 0, std::string()};
}

} // namespace

BinaryClient::BinaryClient(Link& link, Observer observer)
    : m_link(link), m_observer(std::move(observer)) {}

void BinaryClient::waitForStartup(const Deadline& deadline) {
    while (const auto frame = nextUnasked(deadline, deadline)) {
        takeUnasked(*frame, deadline);
        if (!frame->isDebug() && frame->isStatus())
            return;
    }
    throw Failure(Failure::Kind::TimedOut, "time-out while waiting for the startup status");
}

Answer BinaryClient::execute(const BinaryRequest& request, const Deadline& deadline) {
    takeArrived(deadline);
    m_announcedAfterRequest = false;
    m_link.send(request.bytes(), deadline);
    return request.isRaw() ? receiveRaw(request, deadline) : receiveAnswer(request, deadline);
}

void BinaryClient::takeArrived(const Deadline& deadline) {
    Seconds wait{0};
    while (const auto frame = nextUnasked(Deadline::after(wait), deadline)) {
        takeUnasked(*frame, deadline);
        // It may be the first of several.
        wait = kGap;
    }
}

void BinaryClient::takeUnasked(const UnitFrame& frame, const Deadline& deadline) {
    if (frame.isDebug())
        return reportDebug(frame);
    acknowledge(deadline);
    if (frame.isStatus())
        return reportStartup(frame);
    m_preludeLength = 0;
    m_observer.info("station: dropped an answer to an earlier command: " + hexArgument(frame.bytes()));
}

Answer BinaryClient::receiveAnswer(const BinaryRequest& request, const Deadline& deadline) {
    const Deadline end = request.isAnswered() ? deadline : quietUntil(deadline);
    while (const auto frame = nextFrame(end)) {
        m_observer.frame(*frame);
        if (frame->isDebug()) {
            reportDebug(*frame);
            continue;
        }
        acknowledge(deadline);
        if (!isAnnouncement(request, *frame)) {
            if (!request.isAnsweredBy(*frame))
                throw Failure(Failure::Kind::MalformedAnswer, "malformed answer: expected one to " +
                                                                  hexArgument(request.bytes()) + ": " +
                                                                  hexArgument(frame->bytes()));
            return request.answer(*frame);
        }
        reportStartup(*frame);
        m_announcedAfterRequest = true;
    }
    if (request.isAnswered())
        failLate();
    return noAnswer();
}

Answer BinaryClient::receiveRaw(const BinaryRequest& request, const Deadline& deadline) {
    std::optional<UnitFrame> last;
    Deadline end = request.isAnswered() ? deadline : quietUntil(deadline);
    while (const auto frame = nextFrame(end)) {
        m_observer.frame(*frame);
        if (frame->isDebug()) {
            reportDebug(*frame);
        } else {
            acknowledge(deadline);
            last = frame;
        }
        if (last)
            end = quietUntil(deadline);
    }
    if (!last && request.isAnswered())
        failLate();
    return last ? request.answer(*last) : noAnswer();
}

void BinaryClient::failLate() const {
    if (!m_announcedAfterRequest)
        failWithoutAnswer();
    throw Failure(Failure::Kind::TimedOut,
                  "time-out while waiting for the answer; the unit opened its port after the request "
                  "was sent, which has probably lost it");
}

/// Whatever is not one to this request may be an announcement. An answer to a status request looks the
/// same, but is never the unit's first status, and has no prelude.
bool BinaryClient::isAnnouncement(const BinaryRequest& request, const UnitFrame& frame) const {
    if (!frame.isStatus())
        return false;
    if (!request.asksForStatus())
        return true;
    return frame.parameter() == kFirstStatus || m_preludeLength == kPrelude.size();
}

void BinaryClient::reportDebug(const UnitFrame& frame) {
    const std::string text = frame.text();
    if (m_preludeLength < kPrelude.size() && text == kPrelude[m_preludeLength])
        ++m_preludeLength;
    else
        m_preludeLength = text == kPrelude.front() ? 1 : 0;
    m_observer.info(text);
}

void BinaryClient::reportStartup(const UnitFrame& frame) {
    m_preludeLength = 0;
    m_observer.info("startup status " + statusText(frame.payload()));
}

void BinaryClient::acknowledge(const Deadline& deadline) {
    m_link.send(kAcknowledgement, deadline);
}

std::optional<UnitFrame> BinaryClient::nextFrame(const Deadline& moment) {
    for (;;) {
        if (auto frame = m_decoder.next())
            return frame;
        if (moment.expired() || !receiveMore(moment))
            return std::nullopt;
    }
}

/// Like `nextFrame`, but drops what is no frame or stops in the middle of one.
std::optional<UnitFrame> BinaryClient::nextUnasked(const Deadline& moment, const Deadline& deadline) {
    for (;;) {
        if (auto frame = decodeOrDrop())
            return frame;
        const bool isMidFrame = m_decoder.isMidFrame();
        if (deadline.expired())
            return std::nullopt;
        if (receiveMore(isMidFrame ? Deadline::after(kGap) : moment))
            continue;
        if (!isMidFrame)
            return std::nullopt;
        dropReceived();
    }
}

std::optional<UnitFrame> BinaryClient::decodeOrDrop() try {
    return m_decoder.next();
} catch (const Failure&) {
    dropReceived();
    return std::nullopt;
}

void BinaryClient::dropReceived() {
    m_decoder.restart();
    m_observer.info("station: dropped what had arrived and is no frame");
}

bool BinaryClient::receiveMore(const Deadline& moment) {
    const auto bytes = m_link.receiveBy(moment);
    if (!bytes)
        return false;
    if (bytes->empty())
        throw Failure(Failure::Kind::ConnectionLost,
                      "the unit hung up the line before the answer was complete");
    m_decoder.feed(*bytes);
    return true;
}

} // namespace station
