// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno::trap {

enum class SystemCall { WakeUp, Wait, File, Message, Other };

/// What a system call is for; `operation` is its second argument, which tells the kinds of futex calls apart.
SystemCall kindOf(long number, long operation);

/// From now on system calls of this thread are announced to systemCallSeen and then carried out, or no
/// longer. Says how it was before. Costs one store; the first use on a thread asks the kernel.
bool catchSystemCalls(bool on);

/// Defined by who uses this. Called on the thread that makes the call; may make calls of its own.
void systemCallSeen(long number, long operation);

} // namespace zarno::trap
