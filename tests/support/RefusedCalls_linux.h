#pragma once

#include <initializer_list>
#include <vector>

#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace KrTest {

/// From now on the system refuses these calls (SYS_...) with @p error to this thread and to what it
/// starts. False when it does not know how.
inline bool refuseCalls(std::initializer_list<long> calls, int error)
{
    constexpr auto number = static_cast<__u32>(offsetof(seccomp_data, nr));
    const __u32 refusal = SECCOMP_RET_ERRNO | static_cast<__u32>(error);
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number)};
    for (const long call : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, refusal));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace KrTest
