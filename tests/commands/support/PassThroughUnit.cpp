#include "support/PassThroughUnit.h"

#include <filesystem>

#include "core/StringFormat.h"
#include "wire/BigEndian.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

constexpr const char* kNodes[] = {"/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3",
                                  "/dev/usbserialadapter1"};

DeviceCalls& sharedCalls() {
    static auto* const calls = new DeviceCalls;
    return *calls;
}

} // namespace

PassThroughUnit::PassThroughUnit() : m_calls(sharedCalls()) {
    for (unsigned number = 0; number < kChannels; ++number) {
        const fs::path node = kNodes[number];
        fs::create_directories(node.parent_path());
        fs::remove(node);
        fs::create_symlink(m_lines[number].path(), node);
    }
    EXPECT_EQ(comm()->setInterface(Comm::On).code, 0);
    command().setListener(&m_frontEnd);
    m_calls.forget();
}

PassThroughUnit::~PassThroughUnit() {
    for (const char* function : {"poll", "write"})
        EXPECT_FALSE(m_calls.isScripted(function)) << "scripted calls of " << function << " never came";
    for (const unsigned char number : Bytes{0, 1, 2, 3, kWlan, kBluetooth})
        delete command().close(number);
    command().setListener(nullptr);
}

Comm::Handle& PassThroughUnit::channel(unsigned number) {
    Comm::Handle* handle = nullptr;
    EXPECT_EQ(comm()->device(&handle, number).code, 0);
    return *handle;
}

void PassThroughUnit::expectRefused(const Bytes& frame, unsigned code, const std::string& text) {
    SCOPED_TRACE(::testing::PrintToString(frame));
    command().setListener(&m_frontEnd); // a request that was carried out has taken it away
    const Response response = run(frame);
    EXPECT_EQ(response->code, code);
    EXPECT_EQ(response->message, text);
    EXPECT_EQ(response->protocol, 0);
    if (frame.size() < 4)
        return;
    EXPECT_THAT(m_frontEnd.send(frame), ElementsAre(8, 'S', frame[2], frame[3], code >> 24,
                                                    code >> 16 & 0xFF, code >> 8 & 0xFF, code & 0xFF));
    EXPECT_THAT(m_frontEnd.frames, ElementsAre(debugFrame(text)));
}

void PassThroughUnit::expectLineRefused(const Tokens& line, unsigned code, const std::string& text) {
    SCOPED_TRACE(::testing::PrintToString(line));
    command().setListener(&m_frontEnd);
    const Response response = runLine(line);
    EXPECT_EQ(response->code, code);
    EXPECT_EQ(response->message, text);
    EXPECT_EQ(response->protocol, 0);
    if (line.empty())
        return;
    EXPECT_EQ(m_frontEnd.send(line), string_format("serial Error 0x%X", code));
    EXPECT_THAT(m_frontEnd.lines, ElementsAre(infoLine(text)));
}

void PassThroughUnit::expectAnswer(const Bytes& frame, const Bytes& answer) {
    EXPECT_EQ(m_frontEnd.send(frame), answer);
    EXPECT_THAT(m_frontEnd.frames, IsEmpty());
}

void PassThroughUnit::expectLine(const Tokens& line, const std::string& answer) {
    EXPECT_EQ(m_frontEnd.send(line), answer);
    EXPECT_THAT(m_frontEnd.lines, IsEmpty());
}

void PassThroughUnit::openChannel(unsigned char number) {
    const Bytes request = openRequest(number);
    expectAnswer(request, success(request));
}

Bytes openRequest(unsigned char channel, std::uint32_t baud, unsigned char flags) {
    Bytes frame = {9, 'S', 0, channel, 0, 0, 0, 0, flags};
    putBigEndian32(frame, 4, baud);
    return frame;
}

Bytes sendRequest(unsigned char channel, const Bytes& data) {
    Bytes frame = {static_cast<unsigned char>(4 + data.size()), 'S', 2, channel};
    frame.insert(frame.end(), data.begin(), data.end());
    return frame;
}

Bytes success(const Bytes& request) {
    return success(request, {});
}

Bytes success(const Bytes& request, const Bytes& data) {
    Bytes frame = {
        static_cast<unsigned char>(8 + data.size()), request[1], request[2], request[3], 0, 0, 0, 0};
    frame.insert(frame.end(), data.begin(), data.end());
    return frame;
}

Tokens lineWithData(const std::vector<std::string>& words, const Bytes& data) {
    Tokens line = tokens(words);
    line.emplace_back(data.begin(), data.end());
    return line;
}

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}
