// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Sanitizers keep what is freed, and Windows does not tell this way.
#if defined(_WIN32) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline long peakMegabytes() {
    return 0;
}
#else
#include <sys/resource.h>
// What this program took at the most so far; 0 when nothing useful is known.
inline long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}
#endif
