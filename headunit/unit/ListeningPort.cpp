#include "unit/ListeningPort.h"

#include <arpa/inet.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace headunit {
namespace {

constexpr char kListenState[] = "0A";

/// A 32-bit word of an address as the kernel's tables print it: in memory order, read as one number.
std::string word(std::uint32_t hostOrder) {
    std::array<char, 9> text;
    std::snprintf(text.data(), text.size(), "%08X", htonl(hostOrder));
    return text.data();
}

bool reachesLoopback(const std::string& address) {
    const std::string any(8, '0');
    const std::string loopback = word(INADDR_LOOPBACK);
    const std::string mapped = any + any + word(0xFFFF);
    return address == any || address == loopback || address == any + any + any + any ||
           address == mapped + loopback || address == mapped + any;
}

} // namespace

bool isListening(std::uint16_t port) {
    std::ifstream version4("/proc/thread-self/net/tcp");
    std::ifstream version6("/proc/thread-self/net/tcp6");
    return listsListener(version4, port) || listsListener(version6, port);
}

bool listsListener(std::istream& table, std::uint16_t port) {
    std::array<char, 5> wanted;
    std::snprintf(wanted.data(), wanted.size(), "%04X", static_cast<unsigned>(port));
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string slot, local, remote, state;
        fields >> slot >> local >> remote >> state;
        const std::size_t colon = local.find(':');
        if (colon == std::string::npos || state != kListenState)
            continue;
        if (local.substr(colon + 1) == wanted.data() && reachesLoopback(local.substr(0, colon)))
            return true;
    }
    return false;
}

} // namespace headunit
