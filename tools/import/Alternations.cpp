// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/Alternations.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace zarno {
namespace {

bool overlap(const AlternationSet& a, const AlternationSet& b) {
    return a.keys.overlaps(b.keys) && a.velocities.overlaps(b.velocities);
}

// Alternatives whose ranges are not quite the same did not find together as one set.
bool complete(const AlternationSet& a, const AlternationSet& b) {
    return std::none_of(a.zones.begin(), a.zones.end(), [&](const ImportedZone& one) {
        return std::any_of(b.zones.begin(), b.zones.end(), [&](const ImportedZone& other) {
            return one.alternation.position == other.alternation.position;
        });
    });
}

bool fits(const AlternationSet& set, const std::vector<AlternationSet>& pool, bool shared) {
    return std::all_of(pool.begin(), pool.end(), [&](const AlternationSet& other) {
        if (overlap(set, other)) return complete(set, other);
        return shared || set.keys == other.keys;
    });
}

std::size_t countKeyRanges(const std::vector<AlternationSet>& sets) {
    std::set<ImportedRange> ranges;
    for (const AlternationSet& set : sets)
        ranges.insert(set.keys);
    return ranges.size();
}

} // namespace

std::vector<AlternationSet> findAlternationSets(const std::vector<ImportedZone>& zones) {
    std::map<std::tuple<ImportedRange, ImportedRange, int>, AlternationSet> sets;
    std::map<std::tuple<ImportedRange, ImportedRange, int>, int> timesSeen; // of a position
    for (const ImportedZone& zone : zones) {
        const int copy = timesSeen[{zone.keys, zone.velocities, zone.alternation.position}]++;
        AlternationSet& set = sets[{zone.keys, zone.velocities, copy}];
        set.keys = zone.keys;
        set.velocities = zone.velocities;
        set.zones.push_back(zone);
    }
    std::vector<AlternationSet> found;
    for (auto& [key, set] : sets) {
        std::stable_sort(set.zones.begin(), set.zones.end(),
                         [](const ImportedZone& a, const ImportedZone& b) {
                             return a.alternation.position < b.alternation.position;
                         });
        found.push_back(std::move(set));
    }
    return found;
}

std::vector<std::vector<AlternationSet>> poolAlternationSets(std::vector<AlternationSet> sets,
                                                             std::size_t mostPools) {
    const bool shared = countKeyRanges(sets) > mostPools;
    std::vector<std::vector<AlternationSet>> pools;
    for (AlternationSet& set : sets) {
        const auto found = std::find_if(pools.begin(), pools.end(),
                                        [&](const auto& pool) { return fits(set, pool, shared); });
        auto& pool = found == pools.end() ? pools.emplace_back() : *found;
        pool.push_back(std::move(set));
    }
    return pools;
}

std::vector<ImportedZone> orderedZones(const std::vector<AlternationSet>& pool) {
    std::vector<ImportedZone> zones;
    for (const AlternationSet& set : pool)
        zones.insert(zones.end(), set.zones.begin(), set.zones.end());
    std::stable_sort(zones.begin(), zones.end(), [](const ImportedZone& a, const ImportedZone& b) {
        return std::tie(a.alternation.position, a.keys, a.velocities) <
               std::tie(b.alternation.position, b.keys, b.velocities);
    });
    return zones;
}

} // namespace zarno
