#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "StationProcess.h"
#include "support/Daemon.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace station {
namespace {

using testing::HasSubstr;

constexpr char kSource[] = "/tmp/source";
constexpr char kTarget[] = "/tmp/target";
constexpr char kPart[] = "/tmp/target.part";
constexpr char kDevice[] = "/dev/fs0";
constexpr std::size_t kBlock = 4096;

std::string variedBytes(std::size_t count) {
    std::minstd_rand random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() >> 8);
    return bytes;
}

struct Way {
    const char* name;
    std::vector<std::string> options;
    bool isSerial;
    std::optional<std::string> supplier;
};

void PrintTo(const Way& way, std::ostream* out) {
    *out << way.name;
}

const char kSerialTarget[] = "serial:/run/headunit/station-line";

const Way kWays[] = {
    {"Tcp", {"--target", "tcp:127.0.0.1:15051"}, false, std::nullopt},
    {"SerialAscii", {"--target", kSerialTarget, "--protocol", "ascii"}, true, "SOLMED"},
    {"SerialBinary", {"--target", kSerialTarget}, true, std::nullopt},
};

class TransferInUnit : public testing::TestWithParam<Way> {
protected:
    TransferInUnit() {
        startDaemon();
        // For half a second after its announcement a unit may take a request for the acknowledgement.
        EXPECT_TRUE(eventually([] { return run({"status"}, "3").exitCode == 0; }));
    }

    void startDaemon() {
        m_daemon.reset();
        DaemonStart start;
        start.stationLine = GetParam().isSerial;
        start.supplier = GetParam().supplier;
        m_daemon.emplace(start);
    }

    static Outcome run(std::vector<std::string> words, const std::string& timeout = "30") {
        Invocation invocation;
        invocation.arguments = GetParam().options;
        invocation.arguments.insert(invocation.arguments.end(),
                                    {"--progress", "none", "--timeout", timeout});
        invocation.arguments.insert(invocation.arguments.end(), words.begin(), words.end());
        return runStation(invocation);
    }

    static void expectSuccess(const std::vector<std::string>& words) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    }

    /// The link goes and, with `restore`, comes back.
    void cut() {
        if (GetParam().isSerial)
            control("unplug station");
        else
            ::kill(m_daemon->pid(), SIGKILL);
    }
    void restore() {
        if (GetParam().isSerial)
            control("plug station");
        else
            startDaemon();
    }

    static void control(const std::string& words) {
        EXPECT_EQ(
            std::system((std::string(HEADUNIT_PROGRAM) + " control " + words + " >/dev/null").c_str()),
            0);
    }

    static std::string deviceBytes(std::size_t block, std::size_t size) {
        return contentOf(kDevice).substr(block * kBlock, size);
    }

private:
    std::optional<Daemon> m_daemon;
};

TEST_P(TransferInUnit, UploadsAndDownloads) {
    const std::string bytes = variedBytes(200'001);
    writeFile(kSource, bytes);
    expectSuccess({"memory", "upload", kSource, "--at", "0x12345"});
    expectSuccess({"memory", "download", kTarget, "--at", "0x12345", "--length", "200001"});
    EXPECT_TRUE(contentOf(kTarget) == bytes);
}

TEST_P(TransferInUnit, ReachesTheEndOfTheBuffer) {
    writeFile(kSource, "12345");
    expectSuccess({"memory", "upload", kSource, "--at", "134217722"});
    expectSuccess({"memory", "download", kTarget, "--at", "134217722", "--length", "5"});
    EXPECT_EQ(contentOf(kTarget), "12345");
}

TEST_P(TransferInUnit, FlashesAndDumps) {
    const std::string bytes = variedBytes(10 * kBlock + 100);
    const std::string old = deviceBytes(17, kBlock);
    writeFile(kSource, bytes);
    const Outcome flashed = run({"blockdev", "flash", "sd", "1", kSource, "--at", "7"});
    EXPECT_EQ(flashed.exitCode, 0) << flashed.errors;
    EXPECT_THAT(flashed.errors, HasSubstr("the rest of that block keeps its content"));
    EXPECT_TRUE(deviceBytes(7, bytes.size()) == bytes);
    EXPECT_TRUE(deviceBytes(17, kBlock).substr(100) == old.substr(100));
    expectSuccess({"blockdev", "dump", "180", "1", kTarget, "--blocks", "7..17"});
    EXPECT_TRUE(contentOf(kTarget) == deviceBytes(7, 11 * kBlock));
}

TEST_P(TransferInUnit, TellsARefusal) {
    writeFile(kSource, "new");
    const Outcome outcome = run({"blockdev", "flash", "disc", "0", kSource});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.errors, HasSubstr("Device is Read-Only declared"));
    EXPECT_THAT(outcome.errors, HasSubstr("nothing was written to the device"));
}

TEST_P(TransferInUnit, GoesThroughWhenItIsRepeatedAfterACut) {
    const std::vector<std::string> words = {"blockdev", "dump", "sd", "1", kTarget, "--blocks"};
    auto whole = words;
    whole.emplace_back("0..16000");
    auto cutShort = std::async(std::launch::async, [&] { return run(whole, "5"); });
    EXPECT_TRUE(eventually([] { return !contentOf(kPart).empty(); }));
    cut();
    const Outcome outcome = cutShort.get();
    // A terminal does not tell its other end that it was unplugged.
    EXPECT_EQ(outcome.exitCode, GetParam().isSerial ? 4 : 6);
    EXPECT_THAT(outcome.errors,
                HasSubstr("bytes verified; /tmp/target was not written, /tmp/target.part"));
    EXPECT_THAT(outcome.errors, HasSubstr("the device may still be open in the unit"));
    EXPECT_FALSE(exists(kTarget));
    restore();
    auto some = words;
    some.emplace_back("0..99");
    // A unit that has just come back may take a request for the acknowledgement of its announcement: an
    // attempt that is not answered gives up early enough for another one.
    EXPECT_TRUE(eventually([&] { return run(some, "3").exitCode == 0; }));
    EXPECT_TRUE(contentOf(kTarget) == deviceBytes(0, 100 * kBlock));
    EXPECT_FALSE(exists(kPart));
}

INSTANTIATE_TEST_SUITE_P(Links, TransferInUnit, testing::ValuesIn(kWays),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace station
