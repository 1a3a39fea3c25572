// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/trap/Trap.h"

#include "tools/trap/SystemCalls.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>
#include <utility>

extern "C" {
void* __libc_malloc(std::size_t);
void __libc_free(void*);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace zarno::trap {
namespace {

constexpr int deepest = 24, mostTraces = 4;

struct Trace {
    const char* what;
    void* frames[deepest];
    int depth;
};
Trace traces[mostTraces];
std::atomic<int> traceCount{0};

struct ThreadState {
    Counts* counts = nullptr; // while watched
    bool locked = false;      // the outer lock has been taken
    bool inLock = false;
};
thread_local ThreadState state;

// The finding itself may take memory and make system calls.
class Aside {
  public:
    Aside()
        : counts_(state.counts)
        , wasCatching_(catchSystemCalls(false)) {
        state.counts = nullptr;
    }
    ~Aside() {
        state.counts = counts_;
        catchSystemCalls(wasCatching_);
    }

  private:
    Counts* counts_;
    bool wasCatching_;
};

void found(std::uint64_t Counts::*kind, const char* what) {
    ++(state.counts->*kind);
    const int at = traceCount.fetch_add(1);
    if (at >= mostTraces) return;
    const Aside aside;
    traces[at].what = what;
    traces[at].depth = ::backtrace(traces[at].frames, deepest);
}

double nowMs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

using Lock = int (*)(pthread_mutex_t*);
Lock realFunction(const char* name) {
    return reinterpret_cast<Lock>(::dlsym(RTLD_NEXT, name));
}

// The waiting itself is a system call; it belongs to the lock.
int lockThatIsHeld(Lock wait, pthread_mutex_t* mutex, bool outer) {
    const double began = nowMs();
    state.inLock = true;
    const int result = wait(mutex);
    state.inLock = false;
    if (!outer) {
        found(&Counts::waits, "a lock that was held");
        return result;
    }
    ++state.counts->outerLockWaits;
    state.counts->longestOuterLockWaitMs = std::max(state.counts->longestOuterLockWaitMs, nowMs() - began);
    return result;
}

int lock(pthread_mutex_t* mutex) {
    static Lock wait = nullptr, tryOnce = nullptr; // found by whoever comes first, the same for all
    if (wait == nullptr) {
        tryOnce = realFunction("pthread_mutex_trylock");
        wait = realFunction("pthread_mutex_lock");
    }
    if (state.counts == nullptr) return wait(mutex);
    const bool outer = !std::exchange(state.locked, true);
    const int result = tryOnce(mutex);
    if (result == EBUSY) return lockThatIsHeld(wait, mutex, outer);
    state.counts->locks += outer ? 0 : 1;
    return result;
}

} // namespace

Counts& Counts::operator+=(const Counts& more) {
    for (auto field :
         {&Counts::allocations, &Counts::frees, &Counts::waits, &Counts::files, &Counts::messages,
          &Counts::others, &Counts::wakeUps, &Counts::locks, &Counts::outerLockWaits})
        this->*field += more.*field;
    longestOuterLockWaitMs = std::max(longestOuterLockWaitMs, more.longestOuterLockWaitMs);
    return *this;
}

Watch::Watch(Counts& counts) {
    state = {};
    state.counts = &counts;
    catchSystemCalls(true);
}

Watch::~Watch() {
    catchSystemCalls(false);
    state.counts = nullptr;
}

void systemCallSeen(long number, long operation) {
    if (state.counts == nullptr || state.inLock) return;
    switch (kindOf(number, operation)) {
    case SystemCall::WakeUp:
        ++state.counts->wakeUps;
        return;
    case SystemCall::Wait:
        return found(&Counts::waits, "a wait");
    case SystemCall::File:
        return found(&Counts::files, "a file call");
    case SystemCall::Message:
        return found(&Counts::messages, "a message");
    case SystemCall::Other:
        return found(&Counts::others, "a system call");
    }
}

std::string takeTraces() {
    std::string text;
    const int count = std::min(traceCount.load(), mostTraces);
    for (int i = 0; i < count; ++i) {
        text += std::string(traces[i].what) + ":\n";
        char** lines = ::backtrace_symbols(traces[i].frames, traces[i].depth);
        for (int j = 0; lines != nullptr && j < traces[i].depth; ++j)
            text += std::string("    ") + lines[j] + "\n";
        std::free(lines);
    }
    traceCount = 0;
    return text;
}

} // namespace zarno::trap

using zarno::trap::Counts;
using zarno::trap::found;
using zarno::trap::state;

#define ZARNO_COUNT(kind, what)                                                                              \
    if (state.counts != nullptr) found(&Counts::kind, what)

extern "C" {

void* malloc(std::size_t size) {
    ZARNO_COUNT(allocations, "malloc");
    return __libc_malloc(size);
}
void free(void* memory) {
    if (memory != nullptr) ZARNO_COUNT(frees, "free");
    __libc_free(memory);
}
void* calloc(std::size_t count, std::size_t size) {
    ZARNO_COUNT(allocations, "calloc");
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    ZARNO_COUNT(allocations, "realloc");
    return __libc_realloc(memory, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
    ZARNO_COUNT(allocations, "memalign");
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    ZARNO_COUNT(allocations, "aligned_alloc");
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    ZARNO_COUNT(allocations, "posix_memalign");
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    return zarno::trap::lock(mutex);
}

} // extern "C"
