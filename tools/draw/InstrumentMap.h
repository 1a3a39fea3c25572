// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace zarno {

struct InstrumentFile;

/// A picture of an instrument as the bytes of a PNG: keys across, velocity up, a colour a group, keyswitches
/// marked on the keyboard, and what else decides which group sounds in the legend.
std::vector<std::uint8_t> drawInstrumentMap(const InstrumentFile& file);

} // namespace zarno
