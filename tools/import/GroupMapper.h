// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"

namespace zarno {

struct MappedGroup {
    std::string name;
    GroupRecord record;
    std::vector<ImportedZone> zones;
};

/// Deals the zones out to groups, so that the engine's triggers and selection modes do what the zones'
/// conditions and alternations ask for:
/// - a keyswitch activates one group only, so its zones are one group; the first keyswitch's comes first,
///   because the first group is the one that is active when an instrument was loaded;
/// - other groups stand behind all keyswitched ones, because a keyswitch drops the active groups before it;
/// - zones without alternatives are stacked; those with them are round robin or random groups, one for each
///   range of keys while these are few, else shared, with the zones of one position side by side, so that a
///   group's single cursor serves all keys in turn.
std::vector<MappedGroup> mapGroups(std::vector<ImportedZone> zones, std::optional<int> firstKeyswitch,
                                   ImportReport& report);

/// Zones whose pitch or level does not follow the key as the engine's do become one for each key.
std::vector<ImportedZone> splitByKey(const std::vector<ImportedZone>& zones);

/// Gives the zones that cut each other ids of their own. Layers that sound together must not share one: the
/// second would cut the first.
void assignChokeIds(std::vector<MappedGroup>& groups, ImportReport& report);

} // namespace zarno
