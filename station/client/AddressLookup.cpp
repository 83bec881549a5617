#include "client/AddressLookup.h"

#include <cerrno>
#include <future>
#include <string>
#include <system_error>
#include <thread>

#include "client/Failure.h"

namespace station {

namespace {

struct Found {
    AddressList addresses;
    int result = 0; // of getaddrinfo
    int systemError = 0;
};

Found find(const TcpTarget& target, int flags) {
    addrinfo wanted = {};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICSERV | flags;
    addrinfo* list = nullptr;
    const int result =
        ::getaddrinfo(target.host.c_str(), std::to_string(target.port).c_str(), &wanted, &list);
    const int systemError = errno;
    return Found{AddressList(list), result, systemError};
}

/// getaddrinfo() knows no deadline: it runs on a thread of its own, which is left alone when it is late.
Found findName(const TcpTarget& target, const Deadline& deadline) {
    std::packaged_task<Found()> task([target] { return find(target, 0); });
    std::future<Found> found = task.get_future();
    std::thread(std::move(task)).detach();
    if (found.wait_until(deadline.time()) != std::future_status::ready)
        throw Failure(Failure::Kind::TimedOut, "time-out while looking up " + target.host);
    return found.get();
}

std::string reason(const Found& found) {
    if (found.result == EAI_SYSTEM)
        return std::system_category().message(found.systemError);
    return ::gai_strerror(found.result);
}

} // namespace

AddressList lookUp(const TcpTarget& target, const Deadline& deadline) {
    Found found = find(target, AI_NUMERICHOST);
    if (found.result == EAI_NONAME)
        found = findName(target, deadline);
    if (found.result != 0)
        throw Failure(Failure::Kind::CannotConnect,
                      "cannot connect to " + target.text() + ": " + reason(found));
    return std::move(found.addresses);
}

} // namespace station
