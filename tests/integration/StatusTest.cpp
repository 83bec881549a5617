#include <gtest/gtest.h>

#include <string>

#include "support/DaemonTest.h"
#include "support/TestBytes.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

class StatusTest : public DaemonTest {
protected:
    std::string statusWith(const std::string& revision) const {
        return answer("status \"" + daemon.buildStamp() + "\" A024 \"" + revision + "\" 4");
    }
};

struct Revision {
    const char* content;
    const char* shown; ///< null when it cannot be read
};

constexpr Revision kRevisions[] = {
    {"1A\n", "1A"},
    {"1a", "1A"},
    {"0x1A", "1A"},
    {"0X2c\n", "2C"},
    {" \t\n7\n", "7"},
    {"0", "0"},
    {"FFFF", "FFFF"},
    {"12345", "12345"},
    {"FFFFFFFF", "FFFFFFFF"},
    {"1G", "1"},
    {"2C 3D", "2C"},
    {"", nullptr},
    {"\n", nullptr},
    {"garbage", nullptr},
    {"-", nullptr},
    {"0x", "0"},
    {"-1A", "FFFFFFE6"},
    {"+1A", "1A"},

    {"100000000", "FFFFFFFF"},
    {"123456789", "FFFFFFFF"},
    {"-100000001", "FFFFFFFF"},
    {"10000000000000001", "FFFFFFFF"},
    {"00000000000000000000001A", "1A"},
};

TEST_F(StatusTest, ShowsTheBoardRevision) {
    Connection station;
    for (const Revision& row : kRevisions) {
        SCOPED_TRACE(testing::PrintToString(row.content));
        writeFile(kRevisionFile, row.content);
        expectExchange(station, request("status"),
                       row.shown != nullptr
                           ? statusWith(row.shown)
                           : failure("status", "Failed to read from /dev/nvsku/rev file"));
    }
    expectNothingMore(station);
}

TEST_F(StatusTest, ReadsTheBoardRevisionAfresh) {
    Connection station;
    expectExchange(station, request("status"), statusWith("1A"));
    removeFile(kRevisionFile);
    expectExchange(station, request("status"),
                   failure("status", "Failed to open the /dev/nvsku/rev file"));
    makeFolder(kRevisionFile);
    expectExchange(station, request("status"),
                   failure("status", "Failed to read from /dev/nvsku/rev file"));
    removeFile(kRevisionFile);
    writeFile(kRevisionFile, "2C");
    expectExchange(station, request("status"), statusWith("2C"));
    expectNothingMore(station);
}

struct Selection {
    const char* text;
    const char* content; ///< null when nothing is selected
};

constexpr Selection kSelections[] = {
    {"status 01", "image"},
    {"status 02", "serial"},
    {"status 03", "application"},
    {"status 04", "system"},
    {"status 01x", "image"},
    {"status 012", "image"},
    {"status 02 more \"words here\"", "serial"},
    {"status \"03 \"", "application"},
    {"status hex(3034)", "system"},
    {"status base64(MDEx)", "image"},
    {"status 05", nullptr},
    {"status 00", nullptr},
    {"status 0", nullptr},
    {"status 1", nullptr},
    {"status x01", nullptr},
    {"status \" 01\"", nullptr},
    {"status hex( )", nullptr},
    {"status hex(30)", nullptr},
};

TEST_F(StatusTest, ReturnsTheSelectedFile) {
    writeFile(kImageVersionFile, "image");
    writeFile(kSerialNumberFile, "serial");
    writeFile(kApplicationVersionFile, "application");
    writeFile(kSystemVersionFile, "system");
    Connection station;
    for (const Selection& row : kSelections) {
        SCOPED_TRACE(row.text);
        expectExchange(station, request(row.text),
                       row.content != nullptr ? answer("status base64(" + base64(row.content) + ")")
                                              : failure("status", "unsupported subcommand"));
    }
    expectNothingMore(station);
}

TEST_F(StatusTest, ReturnsFilesOfAnyContent) {
    std::string large;
    while (large.size() < 1000000)
        large += everyByte();
    Connection station;
    for (const std::string& content : {""s, "\0"s, "A"s, "AB"s, "ABC"s, everyByte(), large}) {
        SCOPED_TRACE(content.size());
        writeFile(kImageVersionFile, content);
        expectExchange(station, request("status 01"), answer("status base64(" + base64(content) + ")"));
    }
    expectNothingMore(station);
}

TEST_F(StatusTest, EncodesAsTheStandardSays) {
    struct Encoding {
        const char* content;
        const char* received;
    };
    constexpr Encoding kEncodings[] = {
        {"", "\x02#status base64()\x03\n"},
        {"f", "\x02#status base64(Zg==)\x03\n"},
        {"fo", "\x02#status base64(Zm8=)\x03\n"},
        {"foo", "\x02#status base64(Zm9v)\x03\n"},
        {"\xFB\xEF\xFF", "\x02#status base64(++//)\x03\n"},
    };
    Connection station;
    for (const Encoding& row : kEncodings) {
        writeFile(kImageVersionFile, row.content);
        expectExchange(station, "\x02status 01\x03\n", row.received);
    }
}

TEST_F(StatusTest, ComplainsOfMissingFiles) {
    struct Missing {
        const char* text;
        const char* path;
    };
    constexpr Missing kMissing[] = {{"status 01", kImageVersionFile},
                                    {"status 02", kSerialNumberFile},
                                    {"status 03", kApplicationVersionFile},
                                    {"status 04", kSystemVersionFile}};
    Connection station;
    for (const Missing& row : kMissing) {
        SCOPED_TRACE(row.text);
        removeFile(row.path);
        expectExchange(
            station, request(row.text),
            failure("status", "cannot open " + std::string(row.path) + ", no information available"));
    }
    expectNothingMore(station);
}

TEST_F(StatusTest, TellsThatAFolderCannotBeRead) {
    removeFile(kImageVersionFile);
    makeFolder(kImageVersionFile);
    Connection station;
    expectExchange(station, request("status 01"),
                   failure("status", "cannot read /mnt/app/img_ver.txt: Is a directory"));
}

} // namespace
