// Stands in for the daemon: listens where it listens, says so on standard error, and ends with status 3
// once somebody opens the named pipe /tmp/end for writing.
#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cstdio>

#include "wire/Descriptor.h"

int main() {
    const System::Descriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(15051);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::mkfifo("/tmp/end", 0600);
    std::fputs("stand-in: started\n", stderr);
    if (::bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        return 4;
    if (::listen(listener.get(), 5) != 0)
        return 5;
    const System::Descriptor end(::open("/tmp/end", O_RDONLY | O_CLOEXEC));
    return end ? 3 : 6;
}
