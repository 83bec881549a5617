#include "support/PortFixture.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "commands/PWriteCmd.h"
#include "commands/pReadCmd.h"
#include "wire/Descriptor.h"

namespace fs = std::filesystem;

namespace {

void makeSocket(const std::string& path) {
    const System::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0)
        << std::strerror(errno);
}

} // namespace

PortFixture::PortFixture() {
    for (const char* path : {kFolder, kNothing, kSomeFolder, kLinkToItself, kSocket})
        remove(path);
    fs::create_directory(kSomeFolder);
    fs::create_symlink(kLinkToItself, kLinkToItself);
    makeSocket(kSocket);
    fs::create_directory(kFolder);
    setAll("0");
    pReadCmd::getInstance();
    PWriteCmd::getInstance();
}

void PortFixture::setAll(const std::string& content) {
    for (const Port& port : kPorts)
        setLevel(port, content);
}

std::string PortFixture::allLevels() {
    std::string levels;
    for (const Port& port : kPorts)
        levels += levelOf(port);
    return levels;
}

void PortFixture::relink(const Port& port, const char* target) {
    remove(node(port));
    if (target != nullptr)
        fs::create_symlink(target, node(port));
}

std::size_t PortFixture::openDescriptors() {
    const fs::directory_iterator list("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(list), end(list)));
}
