// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/GroupMapper.h"

namespace zarno {

/// Zones with a level of their own at each velocity become slices: each has a volume and ignores velocity, or
/// follows the instrument's curve, whichever holds for more velocities. No velocity is then more than
/// `leastSliceError` dB off, or the next of twice that with which there are no more than `mostSlices` zones
/// in all; the report says so. Order is kept, so that alternatives stay where they are. `settings` has the
/// curve.
void sliceVelocities(std::vector<MappedGroup>& groups, const InstrumentSettings& settings,
                     ImportReport& report);

inline constexpr double leastSliceError = 0.5; // dB
inline constexpr std::size_t mostSlices = 32768;

} // namespace zarno
