#include "support/KernelRefusal.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <cstddef>

namespace {

sock_filter statement(unsigned code, std::uint32_t value) {
    return {static_cast<std::uint16_t>(code), 0, 0, value};
}

sock_filter jump(unsigned code, std::uint32_t value, std::uint8_t ifTrue, std::uint8_t ifFalse) {
    return {static_cast<std::uint16_t>(code), ifTrue, ifFalse, value};
}

sock_filter loadArgument(int argument) {
    const std::size_t offset = offsetof(seccomp_data, args) + static_cast<std::size_t>(argument) * 8;
    return statement(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

void append(const KernelRefusal& refusal, std::vector<sock_filter>& filter) {
    const auto refuse = SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(refusal.error);
    filter.push_back(statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
    const auto call = static_cast<std::uint32_t>(refusal.call);
    if (refusal.argument < 0) {
        filter.push_back(jump(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
    } else {
        filter.push_back(jump(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 3));
        filter.push_back(loadArgument(refusal.argument));
        filter.push_back(jump(BPF_JMP | BPF_JSET | BPF_K, refusal.bits, 0, 1));
    }
    filter.push_back(statement(BPF_RET | BPF_K, refuse));
}

} // namespace

bool enforce(const std::vector<KernelRefusal>& refusals) {
    if (refusals.empty())
        return true;
    std::vector<sock_filter> filter;
    for (const KernelRefusal& refusal : refusals)
        append(refusal, filter);
    filter.push_back(statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}
