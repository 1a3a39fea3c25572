// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/host/HostRig.h"

namespace zarno::test {

struct BusyKind {
    bool streaming = false, sixteenBit = true;
    double reverb = 0.0;
    int polyphony = 32;
};

/// An instrument in which everything happens: loops, one-shots, velocity layers, round robin and random
/// choice, keyswitches, controller and program groups, release samples, exclusive ids, an LFO on everything.
InstrumentBuilder busyInstrument(const std::string& name, const BusyKind& kind);

} // namespace zarno::test
