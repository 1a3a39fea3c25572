// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>

namespace zarno {

// The sanitizers bring an operator new of their own, which checks more than this counts.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool allocationsAreCounted = false;
#else
inline constexpr bool allocationsAreCounted = true;
#endif

// How often the calling thread has taken memory with operator new since it began.
std::size_t allocationsOfThisThread();

// While it lives, what this thread takes with operator new passes through here first.
class AllocationsPass {
  public:
    explicit AllocationsPass(std::function<void()> through);
    ~AllocationsPass();

  private:
    const std::function<void()> through_;
};

} // namespace zarno
