// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

#include <vector>

namespace zarno {

/// Zones of which one is played at a time.
struct AlternationSet {
    ImportedRange keys, velocities;
    std::vector<ImportedZone> zones; ///< in order of position
};

/// Puts together the alternatives among zones of one kind and count. A position that is there twice, as with
/// two microphones, begins another set.
std::vector<AlternationSet> findAlternationSets(const std::vector<ImportedZone>& zones);

/// Deals sets out so that no two of one pool can sound together: a group of the engine plays one zone a note.
/// Sets on different keys get pools of their own while there are at most `mostPools` ranges of keys, so that
/// each key alternates for itself; else they share.
std::vector<std::vector<AlternationSet>> poolAlternationSets(std::vector<AlternationSet> sets,
                                                             std::size_t mostPools);

/// The zones of a pool in the order in which a group alternates them best: by position, then by key. The
/// group's cursor then goes over all keys once for each position.
std::vector<ImportedZone> orderedZones(const std::vector<AlternationSet>& pool);

} // namespace zarno
