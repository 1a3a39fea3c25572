// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/KeyRoles.h"

#include "engine/ZInstrument.h"

#include <algorithm>

namespace zarno {
namespace {

bool switchesByNote(const ZGroup& group) {
    const int note = group.record.keyswitchNote;
    return group.record.trigger == static_cast<std::int32_t>(GroupTrigger::Note) && note >= 0 && note < 128 &&
           group.record.excluded == 0;
}

void markPlayable(KeyRoles& roles, const ZGroup& group) {
    if (group.record.excluded != 0 || group.isReleaseTrigger()) return;
    for (const auto& zone : group.zones()) {
        const int low = std::max({zone->record.lowKey, group.record.lowKey.load(), 0});
        const int high = std::min({zone->record.highKey, group.record.highKey.load(), 127});
        for (int key = low; key <= high; ++key)
            roles[static_cast<std::size_t>(key)] = KeyRole::Playable;
    }
}

} // namespace

KeyRoles keyRolesOf(const ZInstrument& engine) {
    const auto& groups = engine.groups();
    const bool hasZones =
        std::any_of(groups.begin(), groups.end(), [](const auto& group) { return !group->zones().empty(); });
    KeyRoles roles;
    roles.fill(hasZones ? KeyRole::Silent : KeyRole::Playable);
    for (const auto& group : groups)
        markPlayable(roles, *group);
    markActiveKeyswitches(roles, engine);
    return roles;
}

void markActiveKeyswitches(KeyRoles& roles, const ZInstrument& engine) {
    const auto mark = [&](KeyRole role, bool active) {
        for (const auto& group : engine.groups())
            if (switchesByNote(*group) && group->active == active)
                roles[static_cast<std::size_t>(group->record.keyswitchNote.load())] = role;
    };
    mark(KeyRole::Keyswitch, false);
    mark(KeyRole::ActiveKeyswitch, true);
}

} // namespace zarno
