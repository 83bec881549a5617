// private_host [--root FOLDER] [--uid N] COMMAND...: becomes COMMAND on a machine of its own: a network
// with loopback only, user N (0 unless given), and with --root a root folder of its own that holds the
// host's /usr and /proc and the folder of this program, and has terminals of its own.
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "wire/Descriptor.h"

namespace {

namespace fs = std::filesystem;

void require(bool done, const char* what) {
    if (done)
        return;
    std::fprintf(stderr, "private_host: %s: %s\n", what, std::strerror(errno));
    std::exit(98);
}

void writeLine(const char* path, const std::string& line) {
    std::ofstream file(path);
    require(static_cast<bool>((file << line).flush()), path);
}

void bringLoopbackUp() {
    const System::Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP;
    require(::ioctl(socket.get(), SIOCSIFFLAGS, &request) == 0, "loopback");
}

void show(const std::string& folder, const std::string& root) {
    const std::string there = root + folder;
    fs::create_directories(there);
    require(::mount(folder.c_str(), there.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
            there.c_str());
}

void enterRoot(const std::string& root, const std::string& programs) {
    require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
    for (const std::string& folder : {std::string("/usr"), std::string("/proc"), programs})
        show(folder, root);
    for (const char* name : {"bin", "lib", "lib64"}) {
        if (fs::is_symlink(root + "/" + name))
            continue;
        if (fs::is_symlink(std::string("/") + name))
            fs::create_symlink(fs::read_symlink(std::string("/") + name), root + "/" + name);
        else
            show(std::string("/") + name, root);
    }
    for (const char* folder : {"/dev/pts", "/run", "/tmp"})
        fs::create_directories(root + folder);
    require(::mount("devpts", (root + "/dev/pts").c_str(), "devpts", 0, "ptmxmode=0666") == 0,
            "terminals");
    if (!fs::is_symlink(root + "/dev/ptmx"))
        fs::create_symlink("pts/ptmx", root + "/dev/ptmx");
    require(::chroot(root.c_str()) == 0 && ::chdir("/") == 0, "chroot");
}

} // namespace

int main(int argc, char** argv) {
    std::string root;
    std::string user = "0";
    int next = 1;
    for (; next + 1 < argc && std::strncmp(argv[next], "--", 2) == 0; next += 2)
        (std::strcmp(argv[next], "--root") == 0 ? root : user) = argv[next + 1];
    const std::string programs = fs::read_symlink("/proc/self/exe").parent_path().string();
    const std::string outerUser = std::to_string(::geteuid());
    const std::string outerGroup = std::to_string(::getegid());

    const int mounts = root.empty() ? 0 : CLONE_NEWNS;
    require(::unshare(CLONE_NEWUSER | CLONE_NEWNET | mounts) == 0, "unshare");
    writeLine("/proc/self/setgroups", "deny");
    writeLine("/proc/self/uid_map", user + " " + outerUser + " 1");
    writeLine("/proc/self/gid_map", user + " " + outerGroup + " 1");
    bringLoopbackUp();
    if (!root.empty())
        enterRoot(root, programs);
    ::execvp(argv[next], argv + next);
    require(false, argv[next]);
}
