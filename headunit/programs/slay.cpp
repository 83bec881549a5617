// slay [-s SIGNAL] NAME: signals every process of that name in the unit (SIGTERM unless told otherwise)
// and exits with their number, at most 255; with 0 when there is none, also for a wrong command line.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "unit/ProcessTable.h"

namespace {

constexpr int kMostInStatus = 255;

int wrongUse(const char* what) {
    std::fprintf(stderr, "slay: %s\nusage: slay [-s SIGNAL] NAME\n", what);
    return 0;
}

int signalAll(const std::string& name, int signal) {
    int reached = 0;
    for (const pid_t process : headunit::processesNamed(name))
        reached += ::kill(process, signal) == 0 ? 1 : 0;
    return std::min(reached, kMostInStatus);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    int signal = SIGTERM;
    if (arguments.size() >= 2 && arguments.front() == "-s") {
        const auto number = headunit::signalNumber(arguments[1]);
        if (!number)
            return wrongUse("there is no such signal");
        signal = *number;
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (arguments.size() != 1 || arguments.front().empty() || arguments.front().front() == '-')
        return wrongUse("one name is needed");
    return signalAll(arguments.front(), signal);
}
