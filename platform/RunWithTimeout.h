// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace zarno {

/// Called by work on a file system after each answer of the system.
using SignOfLife = std::function<void()>;

/// Runs `work` on a thread of its own, for a caller that must not hang with a file system. True when the work
/// has ended; false when it has called `alive` not once within `timeoutMs`. The thread is then abandoned
/// inside its system call and the module stays in memory, so `work` must own everything it refers to. [any
/// but audio]
bool runWithTimeout(double timeoutMs, std::function<void(const SignOfLife& alive)> work);

} // namespace zarno
