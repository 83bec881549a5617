#include "FormTables.h"

#include "FailureKind.h"
#include "FakeLine.h"
#include "Words.h"
#include "client/Hex.h"
#include "client/Quoting.h"

namespace station {

namespace {

/// The frame with which a unit answers the request.
UnitFrame answerTo(const BinaryRequest& request, const std::string& payload) {
    const std::string kOk(4, '\0');
    const std::string bytes = payload.empty() ? "" : argumentBytes("hex(" + payload + ")");
    return UnitFrame(framed(request.bytes().substr(1, 3) + kOk + bytes));
}

} // namespace

BinaryRequest encode(const std::string& command) {
    std::vector<std::string> arguments = words(command);
    const std::string name = arguments.front();
    arguments.erase(arguments.begin());
    return BinaryRequest::encode(name, arguments);
}

std::string repeated(const std::string& digits, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : " ") + digits;
    return text;
}

std::string bytes(const std::string& digits, std::size_t count) {
    return "'hex(" + repeated(digits, count) + ")'";
}

TEST_P(FormIsSent, As) {
    const BinaryRequest request = encode(GetParam().command);
    EXPECT_EQ(hexArgument(request.bytes()), "hex(" + GetParam().frame + ")");
    EXPECT_FALSE(request.isRaw());
    EXPECT_EQ(request.isAnswered(), GetParam().command != "ack");
    EXPECT_EQ(request.asksForStatus(), GetParam().command == "status");
}

TEST_P(FormIsRefused, AndSaidWhatToDo) {
    EXPECT_THAT(failureOf([] { encode(GetParam().command); }),
                FailsWith(Failure::Kind::InvalidRequest, GetParam().message));
}

TEST_P(FormIsShown, As) {
    const BinaryRequest request = encode(GetParam().command);
    const UnitFrame frame = answerTo(request, GetParam().payload);
    EXPECT_TRUE(request.isAnsweredBy(frame));
    const Answer answer = request.answer(frame);
    EXPECT_EQ(answer.text, GetParam().text);
    EXPECT_EQ(answer.code, 0U);
    EXPECT_EQ(answer.payload, frame.payload());
}

TEST_P(FormIsMalformed, AndTold) {
    const BinaryRequest request = encode(GetParam().command);
    const UnitFrame frame = answerTo(request, GetParam().payload);
    EXPECT_THAT(failureOf([&] { request.answer(frame); }),
                FailsWith(Failure::Kind::MalformedAnswer, GetParam().message));
}

} // namespace station
