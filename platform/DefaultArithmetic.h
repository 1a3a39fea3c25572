// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cfenv>
#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace zarno {

/// While it lives, the calling thread computes as a program that has just begun: results are rounded to the
/// nearest, and nothing that is divided by zero ends the program. Hosts whose compilers set the processor up
/// in other ways get their own settings back at the end. Costs some hundred cycles; any thread.
class DefaultArithmetic {
  public:
    DefaultArithmetic() {
#ifdef __SSE2__ // the environment of MinGW's library leaves this part out
        control_ = _mm_getcsr();
#endif
        std::fegetenv(&environment_);
        std::fesetenv(FE_DFL_ENV);
#ifdef __SSE2__
        _mm_setcsr(_MM_MASK_MASK);
#endif
    }
    ~DefaultArithmetic() {
        std::fesetenv(&environment_);
#ifdef __SSE2__
        _mm_setcsr(control_);
#endif
    }
    DefaultArithmetic(const DefaultArithmetic&) = delete;
    DefaultArithmetic& operator=(const DefaultArithmetic&) = delete;

  private:
    std::fenv_t environment_;
#ifdef __SSE2__
    unsigned control_;
#endif
};

} // namespace zarno
