// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"

namespace zarno {

/// Gives zones with a shaping copies of their samples that have it, and adds these to `samples`. A filter
/// does not follow the key, and time does not run faster at higher ones, so a copy is for a few keys only,
/// and a zone becomes several: as few keys as fit into what copies may take, see below. Where even the widest
/// do not fit, zones stay as they are. Zones must follow keys as the engine does, see splitByKey().
/// `mostBytes`: of copies, in 16 bits; what they may take by themselves is the limit, too.
std::vector<ImportedZone> shapeZones(const std::vector<ImportedZone>& zones,
                                     std::vector<ImportedSample>& samples, ImportReport& report,
                                     std::uint64_t mostBytes = UINT64_MAX);

/// The zones as the engine alone can play them; says what that leaves out.
std::vector<ImportedZone> withoutShaping(std::vector<ImportedZone> zones, ImportReport& report);

/// Of copies, in 16 bits: so much, and for each byte of the samples so much more, but no more than that.
inline constexpr std::uint64_t leastShapedBytes = 32u << 20;
inline constexpr std::uint64_t shapedBytesPerByte = 2000;
inline constexpr std::uint64_t mostShapedBytes = 192u << 20;

} // namespace zarno
