// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/GroupMapper.h"

#include <algorithm>
#include <map>

namespace zarno {
namespace {

struct Taken {
    ImportedZone* zone;
    int layer;
};

bool areAlternatives(const ImportedZone& a, const ImportedZone& b) {
    return a.alternation.kind != ImportedAlternation::Kind::None &&
           a.alternation.kind == b.alternation.kind && a.alternation.count == b.alternation.count &&
           a.alternation.position != b.alternation.position;
}

bool canSoundTogether(const ImportedZone& a, const ImportedZone& b) {
    return a.keys.overlaps(b.keys) && a.velocities.overlaps(b.velocities) && a.onRelease == b.onRelease &&
           !areAlternatives(a, b) &&
           (a.condition.kind != GroupTrigger::Note || b.condition.kind != GroupTrigger::Note ||
            a.condition == b.condition);
}

int freeLayer(const ImportedZone& zone, const std::vector<Taken>& others) {
    std::vector<bool> used(others.size() + 1);
    for (const Taken& other : others)
        if (canSoundTogether(zone, *other.zone)) used[static_cast<std::size_t>(other.layer)] = true;
    return static_cast<int>(std::find(used.begin(), used.end(), false) - used.begin());
}

} // namespace

void assignChokeIds(std::vector<MappedGroup>& groups, ImportReport& report) {
    std::map<int, std::vector<Taken>> classes;
    std::map<std::pair<int, int>, int> ids; // of class and layer
    for (MappedGroup& group : groups)
        for (ImportedZone& zone : group.zones) {
            if (zone.choke == 0) continue;
            auto& others = classes[zone.choke];
            const Taken taken{&zone, freeLayer(zone, others)};
            others.push_back(taken);
            if (taken.layer > 0)
                report.add("layers that are cut together", "each layer is cut by layers of its place",
                           zone.place);
            ids.try_emplace({zone.choke, taken.layer}, static_cast<int>(ids.size()) + 1);
        }
    for (auto& [choke, zones] : classes)
        for (const Taken& taken : zones)
            taken.zone->choke = ids.at({choke, taken.layer});
}

} // namespace zarno
