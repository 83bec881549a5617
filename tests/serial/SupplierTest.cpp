#include <fcntl.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "AsciiDaemonTest.h"
#include "support/Pattern.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

namespace {

using namespace std::string_literals;

constexpr char kAcknowledgement[] = "\x02\x06";

struct Supplier {
    const char* name;
    std::optional<std::string> value;
};

void PrintTo(const Supplier& supplier, std::ostream* out) {
    *out << supplier.name;
}

const Supplier kBinary[] = {
    {"Unset", std::nullopt},
    {"Tavrin", "TAVRIN"},
    {"Tavrin2", "TAVRIN2"},
    {"Fenor", "FENOR"},
    {"FenorX", "FENORX"},
    {"LowerCase", "solmed"},
    {"Empty", ""},
    {"Other", "OTHER"},
    {"TooShort", "SOLME"},
    {"Blank", " SOLMED"},
    {"Inside", "XGALVOR"},
    {"MixedCase", "Galvor"},
    {"TavrinFirst", "TAVRINSOLMED"},
};

const Supplier kAscii[] = {
    {"Solmed", "SOLMED"}, {"SolmedX", "SOLMEDX"}, {"SolmedBlank", "SOLMED "},
    {"Galvor", "GALVOR"}, {"Galvor2", "GALVOR2"}, {"SolmedFirst", "SOLMEDTAVRIN"},
};

/// The flags of the daemon's one open terminal; -1 when there is not exactly one.
long terminalFlags(const Daemon& daemon) {
    const auto terminals = openTerminals(daemon.pid());
    if (terminals.size() != 1)
        return -1;
    const std::string information = contentOf("/proc/" + std::to_string(daemon.pid()) + "/fdinfo/" +
                                              std::to_string(terminals.front()));
    const std::size_t at = information.find("flags:");
    return at == std::string::npos ? -1 : std::stol(information.substr(at + 6), nullptr, 8);
}

class SupplierTest : public testing::TestWithParam<Supplier> {
protected:
    static DaemonStart start() {
        DaemonStart start;
        start.stationLine = true;
        start.supplier = GetParam().value;
        return start;
    }

    static void expectServedByTcp() {
        Connection station;
        expectExchange(station, request("other"), unknown("other"));
    }

    Adapter adapter;
    Daemon daemon{start()};
};

class BinarySupplierTest : public SupplierTest {};

TEST_P(BinarySupplierTest, SpeaksFramesThroughADescriptorThatDoesNotBlock) {
    const std::string announcement = adapter.receiveFrame();
    ASSERT_EQ(announcement.size(), 24U);
    EXPECT_EQ(announcement.substr(0, 8), "\x18s\x2C\0\0\0\0\0"s);
    adapter.send(kAcknowledgement);
    adapter.send("\x04x\x01\x02");
    EXPECT_EQ(adapter.receiveFrame(),
              "\x1E"
              "dNo Handler for the Command x");
    EXPECT_EQ(adapter.receiveFrame(), "\x08x\x01\x02\x01\x01\0\0"s);
    adapter.send(kAcknowledgement);
    const long flags = terminalFlags(daemon);
    ASSERT_NE(flags, -1);
    EXPECT_NE(flags & O_NONBLOCK, 0);
    expectServedByTcp();

    // Announced while no command's time was taken, so that the clock's own time is shown. On a busy
    // machine an acknowledgement may come late.
    ASSERT_TRUE(daemon.waitForError(" ms\n"));
    const std::string error = daemon.error();
    const std::size_t start = error.find(kStartEnd);
    ASSERT_NE(start, std::string::npos) << error;
    const std::size_t end = start + sizeof kStartEnd - 1;
    EXPECT_TRUE(isBannerOnly(error.substr(0, end))) << error;
    EXPECT_TRUE(matchesWhole(
        error.substr(end),
        "Prod\\.testserver: ### ATTENTION: Command-Runtime for \"s\": [0-9]+ ms\n"
        "(Prod\\.testserver: NO ACK message received from the client \\(not critical\\)\n)*"))
        << error;
}

INSTANTIATE_TEST_SUITE_P(Values, BinarySupplierTest, testing::ValuesIn(kBinary),
                         [](const auto& information) { return information.param.name; });

class AsciiSupplierTest : public SupplierTest {};

TEST_P(AsciiSupplierTest, SpeaksLinesThroughAStreamThatDoesNotBlock) {
    expectExchange(adapter, "", banner(daemon));
    expectExchange(adapter, request("foo"), unknown("foo"));
    const long flags = terminalFlags(daemon);
    ASSERT_NE(flags, -1);
    EXPECT_NE(flags & O_NONBLOCK, 0);
    expectNothingMore(adapter);
    expectServedByTcp();
    expectHealthy(daemon);
}

INSTANTIATE_TEST_SUITE_P(Values, AsciiSupplierTest, testing::ValuesIn(kAscii),
                         [](const auto& information) { return information.param.name; });

} // namespace
