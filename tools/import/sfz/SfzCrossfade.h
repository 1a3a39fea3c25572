// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/sfz/SfzOpcodes.h"

#include <optional>

namespace zarno {

/// A region's fades over keys, velocities or the values of a controller. It is silent at the low end of the
/// fade in and below, and at the high end of the fade out and above.
struct SfzCrossfade {
    struct Fade {
        int low = 0, high = 0;
    };
    std::optional<Fade> in, out;
    bool equalPower = true;

    double decibelsAt(double value) const; ///< ImportedGains' silence where it is silent
};

/// Of "xfin_lovel" and its kin with unit "vel", of "xfin_lokey" with "key", of "xfin_locc7" with "cc" and
/// controller 7. `offset` is added to all limits.
SfzCrossfade sfzCrossfade(const SfzOpcodes& opcodes, const std::string& unit, int offset,
                          int controller = -1);

} // namespace zarno
