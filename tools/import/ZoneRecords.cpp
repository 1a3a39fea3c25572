// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/ZoneRecords.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace zarno {
namespace {

constexpr int fullTrackingFloor = -48; // dB: the "Normal" curve then spans 40 dB a factor of ten in velocity

int floorOf(const ImportedZone& zone) {
    return static_cast<int>(std::lround(fullTrackingFloor * std::clamp(zone.velocityTracking, 0.0, 4.0)));
}

} // namespace

ZoneRecord recordOf(const ImportedZone& zone) {
    ZoneRecord record;
    record.rootKey = zone.rootKey;
    record.lowKey = zone.keys.low;
    record.highKey = zone.keys.high;
    record.lowVelocity = zone.velocities.low;
    record.highVelocity = zone.velocities.high;
    record.volume = static_cast<float>(std::clamp(zone.volume, -144.0, 48.0));
    record.pan = static_cast<float>(std::clamp(zone.pan, -1.0, 1.0));
    record.attack = static_cast<float>(zone.envelope.attack);
    record.decay = static_cast<float>(zone.envelope.decay);
    record.sustain = static_cast<float>(zone.envelope.sustain);
    record.release = static_cast<float>(zone.envelope.release);
    record.fineTune = static_cast<float>(zone.tune);
    record.fixedPitch = zone.keyTracking == 0.0 ? 1 : 0;
    record.ignoreVelocity = floorOf(zone) == 0 ? 1 : 0;
    record.exclusiveId = zone.choke;
    return record;
}

int velocityFloorOf(const std::vector<MappedGroup>& groups, ImportReport& report) {
    std::map<int, std::size_t> votes;
    for (const MappedGroup& group : groups)
        for (const ImportedZone& zone : group.zones)
            if (!zone.velocityGains && floorOf(zone) < 0) ++votes[floorOf(zone)];
    if (votes.empty()) return fullTrackingFloor;

    const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
    const int floor = std::max_element(votes.begin(), votes.end(), fewer)->first;
    const std::string instead =
        "the instrument's one, " + std::to_string(floor * 100 / fullTrackingFloor) + " %, or none at all";
    for (const MappedGroup& group : groups)
        for (const ImportedZone& zone : group.zones)
            if (!zone.velocityGains && floorOf(zone) != floor &&
                (floorOf(zone) != 0 || zone.velocityTracking < 0.0))
                report.add("velocity tracking of its own", instead, zone.place);
    return floor;
}

} // namespace zarno
