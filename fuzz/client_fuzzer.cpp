// The station's clients, over a link to somebody who may say anything: what they ask is sent once,
// whatever they are told before, and ends with an answer or a reason. Each answer's frame is
// acknowledged.

#include <optional>
#include <string>
#include <string_view>

#include "Expect.h"
#include "Input.h"
#include "client/BinaryClient.h"
#include "client/Client.h"
#include "client/Failure.h"
#include "client/Link.h"
#include "support/SampleRequests.h"

namespace {

using station::Deadline;
using station::Failure;

/// What comes is the input: of each arrival its length in one byte, and then its bytes. 0 is a silence,
/// and what is longer than the rest hangs up at its end.
class FuzzedLink : public station::Link {
public:
    explicit FuzzedLink(Input& input) : m_input(input) {}

    void send(std::string_view bytes, const Deadline&) override { sent += bytes; }

    std::optional<std::string> receiveBy(const Deadline&) override {
        if (m_input.isEmpty())
            return m_hasHungUp ? std::optional(std::string()) : std::nullopt;
        const std::size_t size = m_input.byte();
        if (size == 0)
            return std::nullopt;
        std::string arrived(m_input.bytes(size));
        m_hasHungUp = arrived.size() < size;
        return arrived;
    }

    std::string sent;

private:
    Input& m_input;
    bool m_hasHungUp = false;
};

Deadline deadline() {
    return Deadline::after(station::Seconds{60});
}

/// False when there is none.
template <typename Asking>
bool isAnswered(const Asking& ask) {
    try {
        const station::Answer answer = ask();
        if (answer.isRefusal())
            expectSame(station::refusalText(answer.code), answer.text, "a refusal's text");
        return true;
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::TimedOut ||
                   failure.kind() == Failure::Kind::ConnectionLost ||
                   failure.kind() == Failure::Kind::MalformedAnswer,
               "A client says what there is instead of an answer");
        return false;
    }
}

std::size_t countOf(std::string_view part, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

void askWithFrames(Input& input) {
    constexpr std::string_view kAcknowledgement = "\x02\x06";
    const station::BinaryRequest& request = sampleRequests()[input.byte() % sampleRequests().size()];
    FuzzedLink link(input);
    std::size_t asked = 0;
    std::size_t frames = 0;
    station::BinaryClient client(link, {[](const std::string&) {},
                                        [&](const station::UnitFrame& frame) {
                                            asked = asked == 0 ? link.sent.size() : asked;
                                            frames += frame.isDebug() ? 0 : 1;
                                        }});
    const bool hasAnswer = isAnswered([&] { return client.execute(request, deadline()); });
    if (hasAnswer && request.isAnswered())
        expect(frames > 0, "An answer is a frame's");
    if (frames == 0)
        return;
    // What was acknowledged before the request is what had arrived by then.
    const std::string before = link.sent.substr(0, asked);
    const std::string after = link.sent.substr(asked);
    expect(before.size() >= request.bytes().size() &&
               before.substr(before.size() - request.bytes().size()) == request.bytes(),
           "A request is sent before it is answered");
    expectSame<std::size_t>(frames * kAcknowledgement.size(), after.size(),
                            "what is sent after the request");
    expectSame<std::size_t>(frames, countOf(kAcknowledgement, after), "the number of acknowledgements");
}

void askWithLines(Input& input) {
    const char* const kNames[] = {"status", "ack", "memory"};
    const unsigned how = input.byte();
    const station::Request request(kNames[how % 3], {});
    FuzzedLink link(input);
    station::Client client(link, (how & 0x80) != 0 ? station::Client::EmptyAnswer::Sent
                                                   : station::Client::EmptyAnswer::NotSent);
    const auto heard = [](const std::string&) {};
    isAnswered([&] {
        if ((how & 0x40) != 0)
            client.takeArrived(deadline(), heard);
        return client.execute(request, deadline(), heard);
    });
    expect(link.sent.empty() || link.sent == request.bytes(), "A request is sent once");
}

} // namespace

/// Which client asks what, and what comes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    (input.byte() % 2 == 0 ? askWithFrames : askWithLines)(input);
    return 0;
}
