#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

#include "Links.h"
#include "support/TestBytes.h"
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

class TransferInUnit : public Links {
protected:
    static Outcome run(const std::vector<std::string>& words, const std::string& timeout = "30") {
        std::vector<std::string> all = {"--progress", "none", "--timeout", timeout};
        all.insert(all.end(), words.begin(), words.end());
        return Links::run(all);
    }

    static void expectSuccess(const std::vector<std::string>& words) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    }

    static std::string deviceBytes(std::size_t block, std::size_t size) {
        return contentOf(kDevice).substr(block * kBlock, size);
    }
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

INSTANTIATE_TEST_SUITE_P(Station, TransferInUnit, testing::ValuesIn(allLinks()), nameOfLink);

} // namespace
} // namespace station
