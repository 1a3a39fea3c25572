// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

/// A library that stands before the C library in a program linked with it, and so sees what any module in
/// this process asks of the system. Linux only.
///
/// Memory calls and locks are seen because the dynamic linker finds the functions here first; system calls of
/// any kind because the kernel hands them to us (syscall user dispatch) on the thread that is being watched.
namespace zarno::trap {

/// What one thread did while it was watched.
struct Counts {
    // Never on an audio thread:
    std::uint64_t allocations = 0, frees = 0;
    std::uint64_t waits = 0;    ///< locks that were held by others, sleeps, waits for events
    std::uint64_t files = 0;    ///< system calls that open, read, move in or close files
    std::uint64_t messages = 0; ///< system calls that write to pipes, sockets and files
    std::uint64_t others = 0;   ///< any other system call

    // Allowed, and worth knowing:
    std::uint64_t wakeUps = 0; ///< of threads that wait for an event or a lock
    std::uint64_t locks = 0;   ///< taken at once, the outer one left out
    std::uint64_t outerLockWaits = 0;
    double longestOuterLockWaitMs = 0.0;

    std::uint64_t forbidden() const { return allocations + frees + waits + files + messages + others; }
    Counts& operator+=(const Counts& more);
};

/// Whether the kernel shows system calls. Without, only memory and locks are seen.
bool seesSystemCalls();

/// Watches the calling thread from here to its end. One at a time. The first lock that is taken is the outer
/// one: the framework's, around the whole of a process call.
class Watch {
  public:
    explicit Watch(Counts& counts);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};

/// Where the first forbidden things were done, as text; empties the list.
std::string takeTraces();

} // namespace zarno::trap
