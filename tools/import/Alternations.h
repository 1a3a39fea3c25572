// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportedInstrument.h"

#include <vector>

namespace zarno {

using ImportedZones = std::vector<ImportedZone>;

/// Deals zones out so that no two of one layer can sound together: a group of the engine that alternates
/// plays one zone a note. Each zone goes into the first layer that has room for it. Throws MakerError when
/// more zones lie on top of each other than anything could play.
std::vector<ImportedZones> alternatingLayers(const ImportedZones& zones);

/// The zones of a layer by the keys that they share, so that each can alternate for itself: one part for all
/// when there would be more than `mostParts`.
std::vector<ImportedZones> partsByKey(ImportedZones layer, std::size_t mostParts);

/// The zones in the order in which a group alternates them best: by position, then by key. The group's cursor
/// then goes over all keys once for each position.
ImportedZones orderedZones(ImportedZones zones);

/// The same of random alternatives, where the engine plays all places of the list as likely: a zone is there
/// as often as its share of chances asks for, at most `mostTurns` times.
ImportedZones zonesByChance(const ImportedZones& zones);
inline constexpr int mostTurns = 24;

/// Of zones that exclude each other the first ones, on the keys that no other one has taken before.
ImportedZones firstAlternatives(const ImportedZones& zones);

} // namespace zarno
