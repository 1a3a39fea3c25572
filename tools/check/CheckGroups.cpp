// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/InstrumentCheck.h"

#include <algorithm>
#include <array>
#include <map>

namespace zarno {
namespace {

using Severity = Finding::Severity;

bool is(const GroupRecord& group, GroupTrigger trigger) {
    return group.trigger == static_cast<std::int32_t>(trigger);
}

bool isMidi(std::int32_t value) {
    return value >= 0 && value <= 127;
}

// Why no event will ever make the group sound; empty when one can.
std::string neverTriggered(const GroupRecord& r) {
    if (is(r, GroupTrigger::Channel) && (r.channel < 0 || r.channel > 15))
        return "channel " + std::to_string(r.channel) + " does not exist (they count from 0 to 15)";
    if (is(r, GroupTrigger::Note) && !isMidi(r.keyswitchNote))
        return "keyswitch " + std::to_string(r.keyswitchNote) + " is no key";
    if (is(r, GroupTrigger::Controller) && !isMidi(r.controllerNumber))
        return "controller " + std::to_string(r.controllerNumber) + " does not exist";
    if (is(r, GroupTrigger::Controller) &&
        (r.controllerLow > r.controllerHigh || r.controllerLow > 127 || r.controllerHigh < 0))
        return "no value lies between controllerLow and controllerHigh";
    if (is(r, GroupTrigger::Program) && !isMidi(r.program))
        return "program " + std::to_string(r.program) + " does not exist (they count from 0 to 127)";
    return {};
}

// Zones of one range beside one another, and others in the group: a note on another key moves the round robin
// past those that are left of this one.
bool losesTurns(const GroupEntry& group) {
    if (group.record.selectionMode != static_cast<std::int32_t>(SelectionMode::RoundRobin)) return false;
    const auto rangeOf = [](const ZoneEntry& zone) {
        const ZoneRecord& r = zone.record;
        return std::array{r.lowKey, r.highKey, r.lowVelocity, r.highVelocity};
    };
    const auto sameRange = [&](const ZoneEntry& a, const ZoneEntry& b) { return rangeOf(a) == rangeOf(b); };
    const auto& zones = group.zones;
    const bool areNeighbours = std::adjacent_find(zones.begin(), zones.end(), sameRange) != zones.end();
    return areNeighbours && std::any_of(zones.begin(), zones.end(), [&](const ZoneEntry& zone) {
               return zone.record.lowKey != zones.front().record.lowKey;
           });
}

void checkGroup(const InstrumentFile& file, std::size_t index, Findings& findings) {
    const GroupEntry& group = file.groups[index];
    const auto add = [&](Severity severity, const std::string& what) {
        findings.push_back({severity, groupPlace(file, index), what});
    };
    if (group.name.text().empty()) add(Severity::Warning, "the name is empty");
    if (group.zones.empty()) add(Severity::Warning, "there are no zones");
    if (const std::string why = neverTriggered(group.record); !why.empty())
        add(Severity::Error, why + ": the group never sounds");
    if (group.record.excluded != 0) add(Severity::Warning, "it is excluded: it does not sound as it stands");
    if (losesTurns(group))
        add(Severity::Warning,
            "its round robin counts for all keys together, and its zones are ordered by key, so "
            "playing several keys skips takes: give each key its own group, or order the zones "
            "by take");
    if (group.record.volume <= -30.0f) add(Severity::Warning, "a volume of -30 dB or below is silence");
}

// A keyswitch silences all groups before it in the same moment, another one of the same key included.
void checkKeyswitches(const InstrumentFile& file, Findings& findings) {
    std::map<std::int32_t, std::size_t> lastWithKey;
    for (std::size_t g = 0; g < file.groups.size(); ++g)
        if (is(file.groups[g].record, GroupTrigger::Note))
            lastWithKey[file.groups[g].record.keyswitchNote] = g;
    for (std::size_t g = 0; g < file.groups.size(); ++g) {
        const GroupRecord& record = file.groups[g].record;
        if (!is(record, GroupTrigger::Note)) continue;
        if (const std::size_t last = lastWithKey[record.keyswitchNote]; last != g)
            findings.push_back({Severity::Error, groupPlace(file, g),
                                "its keyswitch " + std::to_string(record.keyswitchNote) +
                                    " is also that of " + groupPlace(file, last) +
                                    ": only the last one is switched to"});
    }
    for (const auto& [key, owner] : lastWithKey) {
        for (std::size_t g = 0; g < file.groups.size(); ++g) {
            const GroupRecord& record = file.groups[g].record;
            const auto plays = [&, k = key](const ZoneEntry& zone) {
                return std::max<std::int32_t>(zone.record.lowKey, record.lowKey) <= k &&
                       k <= std::min<std::int32_t>(zone.record.highKey, record.highKey);
            };
            if (std::any_of(file.groups[g].zones.begin(), file.groups[g].zones.end(), plays))
                findings.push_back({Severity::Warning, groupPlace(file, g),
                                    "key " + std::to_string(key) +
                                        ", which sounds here, is the keyswitch of " +
                                        groupPlace(file, owner)});
        }
    }
}

} // namespace

void checkGroups(const InstrumentFile& file, Findings& findings) {
    for (std::size_t g = 0; g < file.groups.size(); ++g)
        checkGroup(file, g, findings);
    checkKeyswitches(file, findings);
}

} // namespace zarno
