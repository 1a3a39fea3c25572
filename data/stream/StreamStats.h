// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

/// How an instrument's streaming goes. Counts run since the instrument was made.
struct StreamStats {
    int voices = 0;     ///< streaming now
    int mostVoices = 0; ///< the most at one time
    std::uint64_t refills = 0;
    std::uint64_t lateRefills = 0;   ///< buffers that a voice entered before they were filled
    std::uint64_t failedRefills = 0; ///< sound files that did not open again
    std::uint64_t bytesRead = 0;     ///< as handed to the voices
    double readMs = 0.0;             ///< the disk thread's time for them

    double megabytesPerSecond() const {
        return readMs > 0.0 ? static_cast<double>(bytesRead) / (readMs * 1000.0) : 0.0;
    }
};

} // namespace zarno
