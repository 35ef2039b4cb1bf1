// The wall of system calls, see SystemCallFilter.h.
#include "programs/decoder/SystemCallFilter.h"

#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>

namespace pictorel::decoder {
namespace {

// Without conditions. None of them names a path, another process or a network.
constexpr std::array kAllowed{
    // reading what is open, and letting go of it
    SCMP_SYS(read),
    SCMP_SYS(pread64),
    SCMP_SYS(close),
    // memory
    SCMP_SYS(brk),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    // threads
    SCMP_SYS(futex),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(rseq),
    SCMP_SYS(sched_yield),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(gettid),
    SCMP_SYS(getpid),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(membarrier),
    SCMP_SYS(exit),
    SCMP_SYS(eventfd2), // a counter that each thread of Qt's wants to have, never written to
    // time and chance
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_nanosleep),
    SCMP_SYS(nanosleep),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(getrandom),
    SCMP_SYS(getcpu),
    // the end
    SCMP_SYS(exit_group),
};

// With a condition on one argument.
struct Conditional {
    int call;
    unsigned argument;
    std::uint64_t mask;
    std::uint64_t value; // of the argument's bits under the mask
};

constexpr std::uint64_t kWholeDescriptor = 0xFFFFFFFF;

std::array<Conditional, 6> ConditionalCalls(int answersOn) noexcept {
    const auto socket = static_cast<std::uint64_t>(answersOn);
    return {{
        {SCMP_SYS(sendmsg), 0, kWholeDescriptor, socket},
        {SCMP_SYS(recvmsg), 0, kWholeDescriptor, socket},
        {SCMP_SYS(mmap), 2, PROT_EXEC, 0},
        {SCMP_SYS(mprotect), 2, PROT_EXEC, 0},
        {SCMP_SYS(clone), 0, CLONE_THREAD | CLONE_VM, CLONE_THREAD | CLONE_VM},
        {SCMP_SYS(prlimit64), 2, ~std::uint64_t{0}, 0}, // asking, not setting
    }};
}

bool AddRules(scmp_filter_ctx filter, int answersOn) noexcept {
    bool isWell = true;
    for (const int call : kAllowed) {
        isWell = seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0 && isWell;
    }
    for (const Conditional& rule : ConditionalCalls(answersOn)) {
        const scmp_arg_cmp condition{rule.argument, SCMP_CMP_MASKED_EQ, rule.mask, rule.value};
        isWell = seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, rule.call, 1, &condition) == 0 && isWell;
    }
    // Its flags lie in memory, out of a filter's sight: the C library falls back to the older call.
    isWell = seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 && isWell;
#ifdef PICTOREL_SANITIZED // they write reports, and look through a pipe whether memory can be read
    for (const int call : {SCMP_SYS(write), SCMP_SYS(pipe), SCMP_SYS(pipe2)}) {
        isWell = seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0 && isWell;
    }
#endif
    return isWell;
}

} // namespace

bool FilterSystemCalls(int answersOn) noexcept {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)),
                                                                  seccomp_release);
    return filter != nullptr && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           AddRules(filter.get(), answersOn) && seccomp_load(filter.get()) == 0;
}

} // namespace pictorel::decoder
