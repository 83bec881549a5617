#include "support/RefusedCalls.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Program = std::vector<sock_filter>;

sock_filter load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

sock_filter refuse(int error) {
    return BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error));
}

/// What the program has not decided is allowed.
void install(Program program) {
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        std::perror("system calls cannot be refused here");
        std::abort();
    }
}

} // namespace

void refuseSystemCalls(std::initializer_list<int> numbers, int error) {
    Program program = {load(offsetof(seccomp_data, nr))};
    for (const int number : numbers) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1));
        program.push_back(refuse(error));
    }
    install(program);
}

void refuseWritesBelow(std::uint32_t bytes, int error) {
    // The lower half of the third argument, on a machine that stores it first.
    constexpr std::size_t kCount = offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t);
    install({load(offsetof(seccomp_data, nr)),
             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(SYS_write), 0, 3), load(kCount),
             BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, bytes, 1, 0), refuse(error)});
}
