// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#include <xmmintrin.h>
#define ZARNO_HAS_MXCSR 1
#endif

namespace zarno {

/// While it lives, the calling thread's SSE arithmetic flushes denormal results to zero and reads denormal
/// operands as zero: a reverb tail or a decaying envelope would otherwise cost many times its usual time. The
/// former state, rounding mode included, comes back at the end: it is the host's thread.
class DenormalGuard {
  public:
#ifdef ZARNO_HAS_MXCSR
    DenormalGuard()
        : saved_(_mm_getcsr()) {
        _mm_setcsr(saved_ | flushToZero | denormalsAreZero);
    }
    ~DenormalGuard() {
        _mm_setcsr(saved_);
    }
#else
    DenormalGuard() {}
    ~DenormalGuard() {}
#endif
    DenormalGuard(const DenormalGuard&) = delete;
    DenormalGuard& operator=(const DenormalGuard&) = delete;

#ifdef ZARNO_HAS_MXCSR
  private:
    static constexpr unsigned flushToZero = 0x8000;
    static constexpr unsigned denormalsAreZero = 0x0040;

    unsigned saved_;
#endif
};

} // namespace zarno
