#include "client/Target.h"

#include <gtest/gtest.h>

#include "FailureKind.h"

namespace station {
namespace {

using testing::Values;

struct Parsed {
    std::string text;
    std::string host;
    std::uint16_t port;

    friend void PrintTo(const Parsed& row, std::ostream* out) {
        *out << testing::PrintToString(row.text);
    }
};

class TargetParses : public testing::TestWithParam<Parsed> {};

TEST_P(TargetParses, AndShowsTheSame) {
    const auto target = std::get<TcpTarget>(parseTarget(GetParam().text));
    EXPECT_EQ(target.host, GetParam().host);
    EXPECT_EQ(target.port, GetParam().port);
    EXPECT_EQ(target.text(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Text, TargetParses,
                         Values(Parsed{"tcp:127.0.0.1:15051", "127.0.0.1", 15051},
                                Parsed{"tcp:localhost:1", "localhost", 1},
                                Parsed{"tcp:unit-7.lab_2.example:65535", "unit-7.lab_2.example", 65535},
                                Parsed{"tcp:[::1]:15051", "::1", 15051},
                                Parsed{"tcp:[fe80::1%eth0]:15051", "fe80::1%eth0", 15051},
                                Parsed{"tcp:[::ffff:10.0.0.1]:80", "::ffff:10.0.0.1", 80}));

class TargetParsesPath : public testing::TestWithParam<std::string> {};

TEST_P(TargetParsesPath, AndShowsTheSame) {
    const auto target = std::get<SerialTarget>(parseTarget("serial:" + GetParam()));
    EXPECT_EQ(target.path, GetParam());
    EXPECT_EQ(target.text(), "serial:" + GetParam());
}

INSTANTIATE_TEST_SUITE_P(Text, TargetParsesPath,
                         Values("/dev/pts/3", "/dev/ttyUSB0", "line", "./a b:c", "tcp:host:1", "\xFF"));

class TargetRefuses : public testing::TestWithParam<std::string> {};

TEST_P(TargetRefuses, Text) {
    EXPECT_THAT(failureOf([] { parseTarget(GetParam()); }),
                FailsWith(Failure::Kind::InvalidRequest,
                          "invalid target '" + GetParam() + "': expected tcp:HOST:PORT or serial:PATH"));
}

INSTANTIATE_TEST_SUITE_P(Text, TargetRefuses,
                         Values("", "tcp", "tcp:", "tcp::", "tcp::15051", "tcp:host",
                                "tcp:host:", "tcp:host:0", "tcp:host:65536", "tcp:host:-1",
                                "tcp:host:+1", "tcp:host: 1", "tcp:host:1x", "tcp:host:0x10",
                                "tcp:ho st:1", "tcp:ho/st:1", "TCP:host:1", "udp:host:1", "host:15051",
                                "127.0.0.1:15051", "tcp:::1:15051", "tcp:[::1]", "tcp:[::1]15051",
                                "tcp:[]:1", "tcp:[:1", "tcp:[localhost]:1", "tcp:[127.0.0.1]:1",
                                "tcp:[::g]:1", "tcp:h]:1", "serial", "serial:", "SERIAL:/dev/x",
                                "/dev/ttyUSB0"));

} // namespace
} // namespace station
