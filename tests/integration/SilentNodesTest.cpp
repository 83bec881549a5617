// Nodes that say nothing: whoever asks for one is told so after a moment, and everybody else is served.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/DaemonTest.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

struct Silence {
    const char* path;
    const char* request;
    std::string answer; ///< both lines
};

std::string noInformation(const std::string& path) {
    return failure("status", "cannot open " + path + ", no information available");
}

const std::vector<Silence> kSilences = {
    {kRevisionFile, "status", failure("status", "Failed to open the /dev/nvsku/rev file")},
    {kImageVersionFile, "status 01", noInformation(kImageVersionFile)},
    {kSerialNumberFile, "status 02", noInformation(kSerialNumberFile)},
    {kApplicationVersionFile, "status 03", noInformation(kApplicationVersionFile)},
    {kSystemVersionFile, "status 04", noInformation(kSystemVersionFile)},
    {"/dev/nvgpio/usb_pwr_1", "port read 3",
     refused("port", "27000000", "Reading from Port 3 results in Error-Code 110")},
    {"/dev/nvgpio/ioc_kru_irq", "port getattributes",
     refused("port", "27000000", "Failed to read Port 0: Connection timed out, errorcode: 110")},
    {"/dev/nvgpio/usb_pwr_0", "port write 4 1",
     refused("port", "27000000", "Open Port 4 results in Error 6: No such device or address")},
    {"/dev/cd0", "blockdev open 178 0",
     failure("blockdev", "Failed to open Device /dev/cd0: Connection timed out, errorCode: 110")},
    {"/dev/mnand0", "blockdev open 180 0", answer("blockdev ok")},
    {"/dev/mnand0", "blockdev read 180 0 0 1 0",
     failure("blockdev", "Startblock does not Exist on Device, errorCode: 16842752")},
    {"/dev/fs0", "blockdev write 180 1 0 1 0",
     failure("blockdev",
             "Device is not proprely opened, file descriptor is invalid, errorCode: "
             "16842752")},
};

/// What is answered when the node at that path says nothing.
std::string silenceOf(const std::string& path) {
    for (const Silence& row : kSilences) {
        if (path == row.path)
            return row.answer;
    }
    return {};
}

/// Says something to whoever opens the pipe for reading, so that it is always later. Until its object
/// goes, it waits for that.
class LateWriter {
public:
    LateWriter(const char* path, const char* content)
        : m_thread([this, path, content] { say(path, content); }) {}
    ~LateWriter() {
        m_isOver = true;
        m_thread.join();
    }
    LateWriter(const LateWriter&) = delete;
    LateWriter& operator=(const LateWriter&) = delete;

private:
    void say(const char* path, const std::string& content) const {
        System::Descriptor writer;
        eventually([&] {
            writer.reset(::open(path, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
            return writer || m_isOver;
        });
        if (!writer)
            return;
        // The reader may have given up meanwhile: a pipe that is open for both never lacks one.
        const System::Descriptor both(::open(path, O_RDWR | O_CLOEXEC));
        EXPECT_EQ(::write(both.get(), content.data(), content.size()),
                  static_cast<ssize_t>(content.size()));
    }

    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

class SilentNodesTest : public DaemonTest {
protected:
    static void expectReported(const std::vector<Silence>& rows) {
        Connection other;
        Connection station;
        for (const Silence& row : rows) {
            SCOPED_TRACE(row.request);
            makeSilent(row.path);
            expectExchange(station, request(row.request), row.answer);
            expectExchange(other, request("ack"), answer(""));
        }
        expectNothingMore(station);
    }
};

TEST_F(SilentNodesTest, AreReportedToWhoeverAsks) {
    expectReported(kSilences);
}

TEST_F(SilentNodesTest, ABusIsReportedToWhoeverAsks) {
    expectReported({{"/dev/i2c0", "i2c read 0 1 0x50",
                     refused("i2c", "7000001",
                             "Read Error on Device /dev/i2c0: Inappropriate ioctl for device, "
                             "errorcode: 25")}});
}

TEST_F(SilentNodesTest, WhatTheySayInTimeCounts) {
    Connection station;
    const std::vector<Silence> rows = {
        {"/dev/nvgpio/usb_pwr_1", "port read 3", answer("port hex(0307)")},
        {kRevisionFile, "status", answer("status \"" + daemon.buildStamp() + "\" A024 \"2C\" 4")},
        // A file's size tells how much there is to answer, and a pipe has none.
        {kImageVersionFile, "status 01", answer("status base64()")},
    };
    const char* const contents[] = {"1", " 0x2c\n", "image"};
    for (std::size_t at = 0; at < rows.size(); ++at) {
        SCOPED_TRACE(rows[at].request);
        makeSilent(rows[at].path);
        std::string received;
        // Once more when the machine kept the writer, and not the daemon, from being in time.
        EXPECT_TRUE(eventually([&] {
            const LateWriter writer(rows[at].path, contents[at]);
            station.send(request(rows[at].request));
            received = station.receiveLine();
            if (received == rows[at].answer)
                return true;
            received += station.receiveLine();
            return received != silenceOf(rows[at].path);
        }));
        EXPECT_EQ(received, rows[at].answer);
    }
}

TEST_F(SilentNodesTest, HalfARevisionIsNone) {
    Connection station;
    makeSilent(kRevisionFile);
    const System::Descriptor writer(::open(kRevisionFile, O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::write(writer.get(), "1", 1), 1);
    expectExchange(station, request("status"),
                   failure("status", "Failed to read from /dev/nvsku/rev file"));
    ASSERT_EQ(::write(writer.get(), "1A\n", 3), 3);
    expectExchange(station, request("status"),
                   answer("status \"" + daemon.buildStamp() + "\" A024 \"1A\" 4"));
}

// What has no size has nothing to answer, and what never ends is no number.
TEST_F(SilentNodesTest, ADeviceThatSaysTooMuchIsNotReadToItsEnd) {
    Connection station;
    for (const char* path : {kRevisionFile, kSerialNumberFile}) {
        removeFile(path);
        makeLink(path, "/dev/zero");
    }
    expectExchange(station, request("status"),
                   failure("status", "Failed to read from /dev/nvsku/rev file"));
    expectExchange(station, request("status 02"), answer("status base64()"));
}

TEST_F(SilentNodesTest, APipeThatIsReadGetsTheLevel) {
    Connection station;
    makeSilent("/dev/nvgpio/usb_pwr_1");
    const System::Descriptor driver(::open("/dev/nvgpio/usb_pwr_1", O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(driver);
    expectExchange(station, request("port write 3 1"), answer("port ok"));
    char level = 'z';
    EXPECT_EQ(::read(driver.get(), &level, 1), 1);
    EXPECT_EQ(level, '1');
}

TEST(SilentNodesAtStart, TheDaemonServesAllTheSame) {
    for (const Silence& row : kSilences)
        makeSilent(row.path);
    makeSilent("/dev/sda0");
    const Daemon daemon;
    Connection station;
    expectExchange(station, request("ack"), answer(""));
    expectExchange(
        station, request("blockdev open 177 0"),
        failure("blockdev", "Failed to open Device /dev/sda0: Connection timed out, errorCode: 110"));
    EXPECT_TRUE(daemon.isAlive());
}

} // namespace
