// SPDX-License-Identifier: GPL-3.0-or-later
// The kernel's syscall user dispatch (Linux 5.11, Documentation/admin-guide/syscall-user-dispatch.rst): while
// a byte of the thread's says so, every system call becomes a signal, but for those made in one stretch of
// code.
#include "tools/trap/SystemCalls.h"

#include "tools/trap/Trap.h"

#include <csignal>
#include <cstddef>
#include <linux/futex.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

// Where the handler returns to: a system call as well, in the stretch that is let through.
extern "C" void zarnoTrapRestorer();
extern "C" const char zarnoTrapRestorerEnd[];
asm(R"(
    .text
    .globl zarnoTrapRestorer
    .hidden zarnoTrapRestorer
zarnoTrapRestorer:
    mov $15, %eax
    syscall
    .globl zarnoTrapRestorerEnd
    .hidden zarnoTrapRestorerEnd
zarnoTrapRestorerEnd:
    nop
)");

namespace zarno::trap {
namespace {

constexpr int userDispatch = 59; // PR_SET_SYSCALL_USER_DISPATCH
constexpr char letThrough = 0, catchIt = 1;
constexpr unsigned long withRestorer = 0x04000000; // SA_RESTORER

thread_local volatile char selector = letThrough;
thread_local bool asked = false;

struct KernelAction {
    void (*handler)(int, siginfo_t*, void*);
    unsigned long flags;
    void (*restorer)();
    unsigned long mask;
};

long carryOut(const greg_t* registers, long number) {
    long result = number;
    register long r10 asm("r10") = registers[REG_R10];
    register long r8 asm("r8") = registers[REG_R8];
    register long r9 asm("r9") = registers[REG_R9];
    asm volatile("syscall"
                 : "+a"(result)
                 : "D"(registers[REG_RDI]), "S"(registers[REG_RSI]), "d"(registers[REG_RDX]), "r"(r10),
                   "r"(r8), "r"(r9)
                 : "rcx", "r11", "memory");
    return result;
}

void onSystemCall(int, siginfo_t* info, void* context) {
    selector = letThrough;
    auto* registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    systemCallSeen(info->si_syscall, registers[REG_RSI]);
    registers[REG_RAX] = carryOut(registers, info->si_syscall);
    selector = catchIt;
}

bool installHandler() {
    const KernelAction action{onSystemCall, SA_SIGINFO | SA_NODEFER | withRestorer, zarnoTrapRestorer, 0};
    return ::syscall(SYS_rt_sigaction, SIGSYS, &action, nullptr, 8) == 0;
}

bool askKernel() {
    static const bool handled = installHandler();
    const auto begin = reinterpret_cast<unsigned long>(&zarnoTrapRestorer);
    // The address the kernel compares is the one behind the instruction, so the end counts.
    const auto length = reinterpret_cast<unsigned long>(zarnoTrapRestorerEnd) + 1 - begin;
    return handled && ::prctl(userDispatch, 1, begin, length, &selector) == 0;
}

} // namespace

SystemCall kindOf(long number, long operation) {
    switch (number) {
    case SYS_futex: {
        const long command = operation & FUTEX_CMD_MASK;
        const bool wakes = command == FUTEX_WAKE || command == FUTEX_UNLOCK_PI || command == FUTEX_WAKE_OP ||
                           command == FUTEX_WAKE_BITSET || command == FUTEX_REQUEUE ||
                           command == FUTEX_CMP_REQUEUE;
        return wakes ? SystemCall::WakeUp : SystemCall::Wait;
    }
    case SYS_nanosleep:
    case SYS_clock_nanosleep:
    case SYS_poll:
    case SYS_ppoll:
    case SYS_select:
    case SYS_pselect6:
    case SYS_epoll_wait:
    case SYS_sched_yield:
        return SystemCall::Wait;
    case SYS_open:
    case SYS_openat:
    case SYS_read:
    case SYS_pread64:
    case SYS_readv:
    case SYS_lseek:
    case SYS_close:
    case SYS_stat:
    case SYS_fstat:
    case SYS_newfstatat:
    case SYS_statx:
    case SYS_access:
        return SystemCall::File;
    case SYS_write:
    case SYS_pwrite64:
    case SYS_writev:
    case SYS_sendto:
    case SYS_sendmsg:
    case SYS_recvmsg:
        return SystemCall::Message;
    default:
        return SystemCall::Other;
    }
}

bool catchSystemCalls(bool on) {
    const bool before = selector == catchIt;
    if (!asked) {
        asked = true;
        askKernel();
    }
    selector = on ? catchIt : letThrough;
    return before;
}

bool seesSystemCalls() {
    return askKernel();
}

} // namespace zarno::trap
