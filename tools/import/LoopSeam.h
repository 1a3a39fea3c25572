// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

namespace zarno {

/// How many frames a loop should begin and end later so that a jump that misses by a frame is heard least:
/// where the curve is flattest, within the loop's first 8,192 frames. Reads the recording up to there.
std::uint64_t flattestSeam(const ImportedSample& sample, std::uint64_t loopStart, std::uint64_t loopEnd);

} // namespace zarno
