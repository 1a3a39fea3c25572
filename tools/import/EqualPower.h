// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {

/// Gains of both sides. The engine's pan turns one side down only; the zone's volume says the louder side's.
struct Sides {
    double left = 1.0, right = 1.0;

    /// From side to side with equal power: 1 and 1 in the middle, 0 and +3 dB at the ends.
    static Sides ofPan(double pan) {
        const double angle = (std::clamp(pan, -1.0, 1.0) + 1.0) * std::numbers::pi / 4;
        return {std::cos(angle) * std::numbers::sqrt2, std::sin(angle) * std::numbers::sqrt2};
    }
    Sides operator*(const Sides& other) const { return {left * other.left, right * other.right}; }

    void applyTo(ImportedZone& zone) const {
        const double louder = std::max({left, right, 1e-7});
        zone.pan = right > left ? 1.0 - left / louder : right / louder - 1.0;
        if (std::fabs(zone.pan) < 1e-6) zone.pan = 0.0;
        zone.volume += 20.0 * std::log10(louder);
    }
};

} // namespace zarno
