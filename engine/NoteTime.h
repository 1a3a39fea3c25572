// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <limits>

namespace zarno {

// When a note began or ended. Hosts that bounce without saying so run through rendered time faster than the clock
// goes, hosts that pause, slower: so both count.
struct NoteTime {
    double renderedMs = -std::numeric_limits<double>::infinity(); // initially: never
    // Clock time less rendered time at the start of the block: within a block the clock says how fast we render,
    // not how fast the host plays. Not a number while the host says that it renders offline.
    double lagMs = 0.0;

    // Rendered time or clock time, whichever is longer; rendered time where one of the moments has no clock time.
    double msSince(const NoteTime& start) const {
        const double clockGoesFaster = lagMs - start.lagMs;
        return renderedMs - start.renderedMs + (clockGoesFaster > 0.0 ? clockGoesFaster : 0.0);
    }
};

} // namespace zarno
