// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace zarno {

/// What work on a file system calls whenever the system has answered it.
using SignOfLife = std::function<void()>;

/// Has `work` done on a thread of its own, for a caller that cannot wait for a file system that never
/// answers. True when it is done; false when it has given no sign of life for `patienceMs`. Then it is left
/// behind, wherever it hangs, and the module stays in memory: so `work` refers to nothing that may go.
bool doWithPatience(double patienceMs, std::function<void(const SignOfLife& alive)> work);

} // namespace zarno
