// The station's decoder of frames, and what it makes of those that answer a command: in whatever pieces
// the bytes come, they are the same frames, and end at the same place.

#include <string>
#include <vector>

#include "Expect.h"
#include "Input.h"
#include "client/BinaryRequest.h"
#include "client/Failure.h"
#include "client/UnitFrameDecoder.h"
#include "support/Pieces.h"
#include "support/SampleRequests.h"
#include "wire/BigEndian.h"
#include "wire/Frame.h"

namespace {

using station::BinaryRequest;
using station::Failure;
using station::UnitFrame;

struct Decoded {
    std::vector<std::string> frames;
    bool isMalformed = false;
    bool isMidFrame = false;
};

/// Looks at all bytes at once.
Decoded expected(std::string_view bytes) {
    Decoded decoded;
    while (!bytes.empty()) {
        decoded.isMidFrame = true;
        const std::size_t length = static_cast<unsigned char>(bytes[0]);
        const bool isKnown = bytes.size() >= 2;
        decoded.isMalformed =
            length < 2 || (isKnown && bytes[1] != wire::kDebugId && length < wire::kAnswerHeader);
        if (decoded.isMalformed || bytes.size() < length)
            return decoded;
        decoded.frames.emplace_back(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
    decoded.isMidFrame = false;
    return decoded;
}

void takeAll(station::UnitFrameDecoder& decoder, Decoded& decoded) {
    try {
        while (const auto frame = decoder.next())
            decoded.frames.push_back(frame->bytes());
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::MalformedAnswer, "What is malformed is called so");
        decoded.isMalformed = true;
    }
}

Decoded decode(const std::vector<std::string_view>& parts) {
    station::UnitFrameDecoder decoder;
    Decoded decoded;
    for (const std::string_view part : parts) {
        decoder.feed(part);
        takeAll(decoder, decoded);
    }
    decoded.isMidFrame = decoder.isMidFrame();
    return decoded;
}

void compare(const Decoded& expected, const Decoded& decoded) {
    expectSame<std::size_t>(expected.frames.size(), decoded.frames.size(), "the number of frames");
    for (std::size_t at = 0; at < expected.frames.size(); ++at)
        expectSame(expected.frames[at], decoded.frames[at], "a frame");
    expectSame<bool>(expected.isMalformed, decoded.isMalformed, "whether it is malformed");
    expectSame<bool>(expected.isMidFrame, decoded.isMidFrame, "whether it ends in a frame");
}

void read(const BinaryRequest& request, const std::string& bytes) {
    const UnitFrame frame(bytes);
    expectSame<int>(static_cast<unsigned char>(bytes[1]), frame.id(), "a frame's id");
    if (frame.isDebug())
        return expectSame(bytes.substr(2), frame.text(), "a debug frame's text");
    expectSame(bytes.substr(wire::kAnswerHeader), frame.payload(), "an answer's payload");
    expectSame(bigEndian32({bytes.begin(), bytes.end()}, 4), frame.code(), "an answer's code");
    if (!request.isAnsweredBy(frame))
        return;
    try {
        const station::Answer answer = request.answer(frame);
        expectSame(frame.code(), answer.code, "what a frame is answered with");
        expectSame(frame.payload(), answer.payload.value_or("none"), "the payload of an answer");
        if (answer.isRefusal())
            expectSame(station::refusalText(answer.code), answer.text, "a refusal's text");
    } catch (const Failure& failure) {
        expect(failure.kind() == Failure::Kind::MalformedAnswer && frame.code() == 0,
               "Only a success can have a payload that is none");
    }
}

} // namespace

/// Which request it answers, how the bytes are cut, and the bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const BinaryRequest& request = sampleRequests()[input.byte() % sampleRequests().size()];
    const unsigned cut = input.byte();
    const std::string_view bytes = input.rest();
    const Decoded whole = expected(bytes);
    compare(whole, decode({bytes}));
    compare(whole, decode(pieces(bytes, cut)));
    for (const std::string& frame : whole.frames)
        read(request, frame);
    return 0;
}
