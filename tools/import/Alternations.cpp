// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/Alternations.h"

#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace zarno {
namespace {

constexpr int keyCount = 128;
constexpr std::uint64_t mostComparisons = 1'000'000'000; // some seconds' worth
constexpr std::size_t mostRepeated = 2048;               // zones of a group that only stand for chances

// Zones by the keys on which they sound.
class ZonesOnKeys {
  public:
    /// Calls with the index of each zone added before that can meet this one on a key; some more than once.
    template <typename Function>
    void forEachMet(const ImportedZone& zone, Function&& function) {
        for (int key = first(zone); key <= last(zone); ++key)
            for (const std::size_t other : onKey_[static_cast<std::size_t>(key)]) {
                if (++comparisons_ > mostComparisons)
                    throw MakerError(zone.place, "there are too many zones on the same keys");
                function(other);
            }
    }
    void add(const ImportedZone& zone, std::size_t index) {
        for (int key = first(zone); key <= last(zone); ++key)
            onKey_[static_cast<std::size_t>(key)].push_back(index);
    }

  private:
    static int first(const ImportedZone& zone) { return std::max(zone.keys.low, 0); }
    static int last(const ImportedZone& zone) { return std::min(zone.keys.high, keyCount - 1); }

    std::array<std::vector<std::size_t>, keyCount> onKey_;
    std::uint64_t comparisons_ = 0;
};

} // namespace

std::vector<ImportedZones> alternatingLayers(const ImportedZones& zones) {
    std::vector<ImportedZones> layers;
    std::vector<std::size_t> layerOf(zones.size());
    ZonesOnKeys before;
    for (std::size_t i = 0; i < zones.size(); ++i) {
        const ImportedZone& zone = zones[i];
        std::vector<bool> isTaken(layers.size());
        before.forEachMet(zone, [&](std::size_t other) {
            if (zone.velocities.overlaps(zones[other].velocities) &&
                !zone.alternation.excludes(zones[other].alternation))
                isTaken[layerOf[other]] = true;
        });
        layerOf[i] =
            static_cast<std::size_t>(std::find(isTaken.begin(), isTaken.end(), false) - isTaken.begin());
        if (layerOf[i] == layers.size()) layers.emplace_back();
        layers[layerOf[i]].push_back(zone);
        before.add(zone, i);
    }
    return layers;
}

std::vector<ImportedZones> partsByKey(ImportedZones layer, std::size_t mostParts) {
    std::stable_sort(layer.begin(), layer.end(),
                     [](const ImportedZone& a, const ImportedZone& b) { return a.keys.low < b.keys.low; });
    std::vector<ImportedZones> parts;
    int reached = -1;
    for (const ImportedZone& zone : layer) {
        if (parts.empty() || zone.keys.low > reached) parts.emplace_back();
        parts.back().push_back(zone);
        reached = std::max(reached, zone.keys.high);
    }
    if (parts.size() > mostParts) return {std::move(layer)};
    return parts;
}

ImportedZones orderedZones(ImportedZones zones) {
    std::stable_sort(zones.begin(), zones.end(), [](const ImportedZone& a, const ImportedZone& b) {
        return std::tie(a.alternation.position, a.keys, a.velocities) <
               std::tie(b.alternation.position, b.keys, b.velocities);
    });
    return zones;
}

ImportedZones zonesByChance(const ImportedZones& zones) {
    constexpr double closeEnough = 0.06; // of a turn
    const auto fits = [&](int turns) {
        return std::all_of(zones.begin(), zones.end(), [turns](const ImportedZone& zone) {
            const double low = zone.alternation.low * turns, high = zone.alternation.high * turns;
            return std::fabs(low - std::round(low)) < closeEnough &&
                   std::fabs(high - std::round(high)) < closeEnough;
        });
    };
    int turns = 1;
    while (turns < mostTurns && !fits(turns))
        ++turns;
    const auto turnsOf = [turns](const ImportedZone& zone) {
        const int low = std::min(static_cast<int>(std::lround(zone.alternation.low * turns)), turns - 1);
        return std::pair(low,
                         std::max(static_cast<int>(std::lround(zone.alternation.high * turns)), low + 1));
    };
    std::size_t count = 0;
    for (const ImportedZone& zone : zones)
        count += static_cast<std::size_t>(turnsOf(zone).second - turnsOf(zone).first);
    ImportedZones repeated;
    for (const ImportedZone& zone : zones) {
        const auto [low, high] = turnsOf(zone);
        for (int turn = low; turn < (count > std::max(mostRepeated, zones.size()) ? low + 1 : high); ++turn) {
            repeated.push_back(zone);
            repeated.back().alternation.position = turn;
        }
    }
    return orderedZones(std::move(repeated));
}

ImportedZones firstAlternatives(const ImportedZones& zones) {
    ImportedZones kept;
    ZonesOnKeys before;
    for (ImportedZone zone : orderedZones(zones)) {
        std::array<bool, keyCount> isTaken{};
        before.forEachMet(zone, [&](std::size_t other) {
            const ImportedZone& taken = kept[other];
            if (taken.alternation.excludes(zone.alternation) && taken.velocities.overlaps(zone.velocities))
                std::fill(isTaken.begin() + std::max(taken.keys.low, 0),
                          isTaken.begin() + std::min(taken.keys.high, keyCount - 1) + 1, true);
        });
        const auto isFree = [&](int key) {
            return !isTaken[static_cast<std::size_t>(std::clamp(key, 0, keyCount - 1))];
        };
        while (!zone.keys.isEmpty() && !isFree(zone.keys.low))
            ++zone.keys.low;
        while (!zone.keys.isEmpty() && !isFree(zone.keys.high))
            --zone.keys.high;
        if (zone.keys.isEmpty()) continue;
        before.add(zone, kept.size());
        kept.push_back(std::move(zone));
    }
    return kept;
}

} // namespace zarno
