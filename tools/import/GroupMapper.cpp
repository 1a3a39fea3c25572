// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/GroupMapper.h"

#include "tools/import/Alternations.h"
#include "tools/import/NoteNames.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace zarno {
namespace {

using Kind = ImportedAlternation::Kind;

// More ranges of keys than this alternate in one group together: never, as there are no more keys.
constexpr std::size_t mostPools = 128;

// What a group decides for all of its zones. Ordered as groups are.
struct Profile {
    bool behindKeyswitches = false;
    bool notFirst = false; // keyswitched, but not from the start
    ImportedCondition condition;
    bool onRelease = false;
    double releaseDecay = 0.0;
    std::string name;

    bool isKeyswitched() const { return condition.kind == GroupTrigger::Note; }
    auto operator<=>(const Profile&) const = default;
};

class GroupMapper {
  public:
    GroupMapper(std::optional<int> firstKeyswitch, ImportReport& report)
        : firstKeyswitch_(firstKeyswitch)
        , report_(report) {}

    void add(ImportedZone zone);
    std::vector<MappedGroup> map();

  private:
    void mapKeyswitched(const Profile& profile, const std::vector<ImportedZone>& zones);
    void mapAlternating(const Profile& profile, const std::vector<ImportedZone>& zones);
    void makeGroup(const Profile& profile, Kind kind, std::vector<ImportedZone> zones,
                   const std::string& suffix = {});
    std::string nameOf(const Profile& profile, Kind kind) const;

    const std::optional<int> firstKeyswitch_;
    ImportReport& report_;
    std::map<Profile, std::vector<ImportedZone>> profiles_;
    std::vector<MappedGroup> groups_;
};

void GroupMapper::add(ImportedZone zone) {
    Profile profile;
    profile.condition = zone.condition;
    profile.onRelease = zone.onRelease;
    profile.releaseDecay = zone.onRelease ? zone.releaseDecay : 0.0;
    profile.name = zone.group;
    profile.behindKeyswitches = !profile.isKeyswitched();
    if (profile.isKeyswitched()) {
        if (zone.onRelease) {
            report_.add("release sample of a keyswitch", "left out", zone.place);
            return;
        }
        profile.notFirst = firstKeyswitch_ && zone.condition.number != *firstKeyswitch_;
        profile.name.clear(); // one group whatever they are called
    }
    profiles_[profile].push_back(std::move(zone));
}

std::string GroupMapper::nameOf(const Profile& profile, Kind kind) const {
    if (!profile.name.empty()) return profile.name;
    const ImportedCondition& when = profile.condition;
    const std::string number = std::to_string(when.number);
    const std::string name =
        when.kind == GroupTrigger::Note         ? "Keyswitch " + keyName(when.number)
        : when.kind == GroupTrigger::Channel    ? "Channel " + std::to_string(when.number + 1)
        : when.kind == GroupTrigger::Program    ? "Program " + std::to_string(when.number + 1)
        : when.kind == GroupTrigger::Controller ? "Controller " + number
                                                : "";
    const std::string what = profile.onRelease          ? "Release"
                             : kind == Kind::RoundRobin ? "Round Robin"
                             : kind == Kind::Random     ? "Random"
                                                        : "Main";
    return name.empty() ? what : profile.onRelease ? name + ' ' + what : name;
}

void GroupMapper::makeGroup(const Profile& profile, Kind kind, std::vector<ImportedZone> zones,
                            const std::string& suffix) {
    MappedGroup group;
    group.name = nameOf(profile, kind) + suffix;
    if (profile.isKeyswitched() && !zones.front().group.empty()) group.name = zones.front().group;
    GroupRecord& record = group.record;
    record.trigger = static_cast<std::int32_t>(profile.condition.kind);
    const int number = profile.condition.number;
    switch (profile.condition.kind) {
    case GroupTrigger::Channel:
        record.channel = number;
        break;
    case GroupTrigger::Note:
        record.keyswitchNote = number;
        break;
    case GroupTrigger::Program:
        record.program = number;
        break;
    case GroupTrigger::Controller:
        record.controllerNumber = number;
        record.controllerLow = profile.condition.low;
        record.controllerHigh = profile.condition.high;
        break;
    default:
        break;
    }
    record.selectionMode = static_cast<std::int32_t>(kind == Kind::RoundRobin ? SelectionMode::RoundRobin
                                                     : kind == Kind::Random   ? SelectionMode::TotalRandom
                                                                              : SelectionMode::Stack);
    record.releaseTrigger = profile.onRelease ? 1 : 0;
    record.releaseDecayTime = static_cast<float>(profile.releaseDecay);
    group.zones = std::move(zones);
    groups_.push_back(std::move(group));
}

std::vector<ImportedZone> zonesOfKind(const std::vector<ImportedZone>& zones, Kind kind) {
    std::vector<ImportedZone> found;
    std::copy_if(zones.begin(), zones.end(), std::back_inserter(found),
                 [kind](const ImportedZone& zone) { return zone.alternation.kind == kind; });
    return found;
}

bool isSteady(const ImportedZone& zone) {
    return zone.alternation.kind == Kind::None;
}

// Always one group, and a group either alternates or has layers. A few zones that lie on top of
// alternating ones are left out; where there are many of them, all layers sound, each with its first
// alternative.
void GroupMapper::mapKeyswitched(const Profile& profile, const std::vector<ImportedZone>& zones) {
    if (std::all_of(zones.begin(), zones.end(), isSteady)) return makeGroup(profile, Kind::None, zones);
    auto sorted = zones; // those that alternate get the first layer
    std::stable_partition(sorted.begin(), sorted.end(),
                          [](const ImportedZone& zone) { return !isSteady(zone); });
    auto layers = alternatingLayers(sorted);
    const std::size_t above = zones.size() - layers.front().size();
    constexpr std::size_t few = 10; // one in ten
    if (above * few <= zones.size()) {
        for (std::size_t i = 1; i < layers.size(); ++i)
            for (const ImportedZone& zone : layers[i])
                report_.add("layer above alternating samples of a keyswitch", "left out", zone.place);
        const bool isRandom =
            std::any_of(layers.front().begin(), layers.front().end(),
                        [](const ImportedZone& zone) { return zone.alternation.kind == Kind::Random; });
        return isRandom ? makeGroup(profile, Kind::Random, zonesByChance(layers.front()))
                        : makeGroup(profile, Kind::RoundRobin, orderedZones(layers.front()));
    }
    auto first = firstAlternatives(zones);
    report_.add("alternation in layers of a keyswitch", "the first alternative always plays",
                zones.front().place,
                std::max<std::size_t>(1, zones.size() - std::min(zones.size(), first.size())));
    makeGroup(profile, Kind::None, std::move(first));
}

// Alternatives of layers that sound together, two microphones say, must be of the same stroke: random ones
// take turns then.
void GroupMapper::mapAlternating(const Profile& profile, const std::vector<ImportedZone>& zones) {
    std::map<std::pair<Kind, int>, std::vector<ImportedZone>> kinds; // by kind and count
    for (const ImportedZone& zone : zones)
        if (!isSteady(zone))
            kinds[{zone.alternation.kind, zone.alternation.kind == Kind::Random ? 0 : zone.alternation.count}]
                .push_back(zone);
    for (const auto& [kind, alternatives] : kinds) {
        const bool isRandom = kind.first == Kind::Random;
        const auto layers = alternatingLayers(alternatives);
        if (isRandom && layers.size() > 1)
            report_.note("random samples in layers", "take turns, so that the layers stay together",
                         alternatives.front().place, alternatives.size());
        for (const ImportedZones& layer : layers) {
            const auto parts = partsByKey(layer, mostPools);
            for (const ImportedZones& part : parts)
                makeGroup(profile, isRandom && layers.size() > 1 ? Kind::RoundRobin : kind.first,
                          isRandom ? zonesByChance(part) : orderedZones(part),
                          parts.size() > 1 ? ' ' + keyName(part.front().keys.low) : "");
        }
    }
}

std::vector<MappedGroup> GroupMapper::map() {
    for (const auto& [profile, zones] : profiles_) {
        if (profile.isKeyswitched()) {
            mapKeyswitched(profile, zones);
            continue;
        }
        auto steady = zonesOfKind(zones, Kind::None);
        if (!steady.empty()) makeGroup(profile, Kind::None, std::move(steady));
        mapAlternating(profile, zones);
    }
    return std::move(groups_);
}

} // namespace

std::vector<MappedGroup> mapGroups(std::vector<ImportedZone> zones, std::optional<int> firstKeyswitch,
                                   ImportReport& report) {
    GroupMapper mapper(firstKeyswitch, report);
    for (ImportedZone& zone : zones)
        mapper.add(std::move(zone));
    return mapper.map();
}

} // namespace zarno
