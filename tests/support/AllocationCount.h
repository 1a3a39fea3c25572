// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace zarno {

// How often the calling thread has taken memory with operator new since it began.
std::size_t allocationsOfThisThread();

} // namespace zarno
