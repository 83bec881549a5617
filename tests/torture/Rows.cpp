#include <sys/resource.h>

#include "Row.h"
#include "rows/Rows.h"

namespace {

constexpr char kNoDescriptors[] = "a sanitizer needs descriptors for its own checks";

} // namespace

const std::vector<Row>& allRows() {
    const auto limited = [](rlim_t descriptors) { return Needs{true, {{RLIMIT_NOFILE, descriptors}}}; };
    const std::vector<Link> all = {Link::Tcp, Link::Frames, Link::Lines};
    const std::vector<Link> serial = {Link::Frames, Link::Lines};
    static const std::vector<Row> s_rows = {
        {"flood", "requests in order, without waiting for answers", all, flood},
        {"slow", "clients that send byte by byte, 32 of them over TCP", all, slowClients},
        {"deaf", "clients that never read, and go or read late", all, neverReads},
        {"splits", "a request cut at each byte, with each kind of argument", all, splits},
        {"half-close",
         "stations that end their sending, whole requests and parts of them",
         {Link::Tcp},
         halfClose},
        {"close", "stations that go before their answer comes", all, closeBeforeTheAnswer},
        {"descriptors-16", "more stations than 16 descriptors serve, and commands that want some",
         serial, fewDescriptors, limited(16), kNoDescriptors},
        {"descriptors-32", "the same with 32", serial, fewDescriptors, limited(32), kNoDescriptors},
        {"descriptors-64", "the same with 64", serial, fewDescriptors, limited(64), kNoDescriptors},
        {"allocations",
         "each 101st, 31st, 13th, 7th and 3rd allocation fails while five stations ask",
         serial,
         failedAllocations,
         {true, {}, true},
         "a sanitizer takes the allocations itself"},
        {"calls",
         "system calls that are interrupted or do half of it, while four stations ask",
         serial,
         brokenCalls,
         {true, {}, true},
         "a sanitizer's library wants to be the first one"},
        {"device-loss", "the line goes at each byte of a request and of its answer", serial, deviceLoss},
        {"hang-ups", "the line goes and comes back a thousand times", serial, hangUps},
        {"disk-full", "no room, or little, for the output of commands", all, diskFull},
        {"stubborn", "commands that no signal ends and that start others like them", all,
         stubbornChildren},
        {"pipes", "commands that do not read, write much, or both", all, filledPipes},
        {"grandchildren", "commands that leave processes behind, in sessions of their own", all,
         grandchildren},
        {"signals", "signals without a meaning, a thousand a second", all, signalStorm},
        {"random-frames",
         "frames made by chance, for commands that there are and for others",
         {Link::Frames},
         randomFrames},
        {"random-lines",
         "lines made by chance, on 8 links at once",
         {Link::Tcp, Link::Lines},
         randomLines},
        {"thousand", "a thousand connections at once", {Link::Tcp}, thousandConnections},
        {"endless-line",
         "a line without an end, for a daemon that has 32 MiB left",
         {Link::Tcp, Link::Lines},
         endlessLine,
         {true},
         "a sanitizer needs the address space"},
        {"endurance", "all kinds of requests on 4 links for a long time", serial, endurance, {true}},
    };
    return s_rows;
}
