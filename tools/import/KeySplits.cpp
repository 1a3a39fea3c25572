// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Limits.h"
#include "tools/import/GroupMapper.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>

namespace zarno {
namespace {

// A zone without key tracking needs no splitting, unless it is tuned: the engine's fixed pitch is the
// recording's own.
bool followsKeysAsTheEngine(const ImportedZone& zone) {
    const bool pitch = zone.keyTracking == 100.0 || (zone.keyTracking == 0.0 && zone.tune == 0.0);
    return pitch && zone.keyVolume == 0.0 && !zone.keyGains;
}

// Keys of a zone that does not follow them as the engine's do; those at which it is silent have none.
bool isHeardAt(const ImportedZone& zone, int key) {
    return !zone.keyGains || (*zone.keyGains)[static_cast<std::size_t>(key)] > silentGain;
}

ImportedZone atKey(const ImportedZone& zone, int key) {
    ImportedZone one = zone;
    one.keys = {key, key};
    one.tune += (key - zone.rootKey) * zone.keyTracking;
    one.rootKey = key;
    one.keyTracking = 100.0;
    one.volume += (key - zone.keyVolumeCentre) * zone.keyVolume;
    one.keyVolume = 0.0;
    if (zone.keyGains) one.volume += (*zone.keyGains)[static_cast<std::size_t>(key)];
    one.keyGains = nullptr;
    return one;
}

} // namespace

std::vector<ImportedZone> splitByKey(const std::vector<ImportedZone>& zones) {
    std::vector<ImportedZone> split;
    for (const ImportedZone& zone : zones) {
        const bool stays = followsKeysAsTheEngine(zone);
        const int low = std::max(zone.keys.low, 0), high = std::min(zone.keys.high, 127);
        if (split.size() + static_cast<std::size_t>(stays ? 1 : std::max(high - low + 1, 0)) >
            limits::importedZones)
            throw MakerError(zone.place, "there are too many zones");
        if (stays) split.push_back(zone);
        for (int key = low; !stays && key <= high; ++key)
            if (isHeardAt(zone, key)) split.push_back(atKey(zone, key));
    }
    return split;
}

} // namespace zarno
