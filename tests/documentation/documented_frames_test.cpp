#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "FrameExamples.h"
#include "core/AbstractListener.h"
#include "core/BuildStamp.h"
#include "core/Handler.h"

namespace {

using Frame = std::vector<unsigned char>;

/// Keeps what the unit sends, in order.
class RecordingListener : public AbstractListener {
public:
    void threadLoop(System::Thread*) override {}
    void asyncSend(std::string&) override {}
    void asyncSend(Frame& frame) override { frames.push_back(frame); }
    int getDeviceListNumber() override { return 3; }

    std::vector<Frame> frames;
};

/// Day, month, year, hour and minute of the stamp, read as the document describes them.
Frame documentedBuildTime() {
    const std::string stamp = getDateTimeString();
    Frame bytes;
    for (const std::size_t at : {8U, 5U, 2U, 11U, 14U}) {
        const std::string digits =
            (stamp[at] == ' ' ? "0" : stamp.substr(at, 1)) + stamp.substr(at + 1, 1);
        bytes.push_back(static_cast<unsigned char>(std::stoul(digits, nullptr, 16)));
    }
    return bytes;
}

TEST(DocumentedFrames, AreAnsweredAsTheDocumentSays) {
    std::ifstream document(PROTOCOL_DOCUMENT);
    ASSERT_TRUE(document) << PROTOCOL_DOCUMENT;
    const auto blocks = readFrameExamples(document);
    ASSERT_GE(blocks.size(), 4U);
    const Frame buildTime = documentedBuildTime();
    Handler::getInstance()->initHandler();
    RecordingListener station;
    std::vector<Frame> expected;
    for (const auto& block : blocks) {
        for (const FrameExample& line : block) {
            Frame bytes = bytesOf(line.text, buildTime);
            if (!line.sent) {
                expected.push_back(bytes);
                continue;
            }
            EXPECT_EQ(station.frames, expected) << "before: " << line.text;
            const Frame answer = Handler::getInstance()->handleCommand(&bytes, &station);
            if (!answer.empty())
                station.frames.push_back(answer);
        }
        EXPECT_EQ(station.frames, expected);
    }
}

} // namespace
