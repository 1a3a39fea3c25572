// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ActiveGroups.h"

#include <algorithm>

namespace zarno {

void ActiveGroups::update(const EngineEvent& event) {
    for (const auto& group : all_)
        updateGroup(*group, event);
}

void ActiveGroups::updateGroup(ZGroup& group, const EngineEvent& event) {
    const GroupRecord& record = group.record;
    if (record.excluded != 0) return set(group, false);
    switch (static_cast<GroupTrigger>(record.trigger.load())) {
    case GroupTrigger::Always:
        return set(group, true);
    case GroupTrigger::Channel:
        // Events of every type count: the last event's channel decides.
        return set(group, event.channel() == record.channel);
    case GroupTrigger::Note:
        // Any velocity, 0 too. Groups earlier in the instrument are dropped until their own trigger brings
        // them back, later ones are judged afresh in this same pass: both on purpose.
        if (event.type() == midi::noteOn && event.data1 == record.keyswitchNote) {
            deactivateAll();
            set(group, true);
        }
        return;
    case GroupTrigger::Controller: {
        // The event itself is stored after this, so a controller or program counts from the next event on,
        // on purpose.
        const int number = record.controllerNumber;
        const int value =
            number >= 0 && number < 128
                ? inputs_.controllers[static_cast<std::size_t>(number)].load(std::memory_order_relaxed)
                : -1;
        return set(group, value >= 0 && record.controllerLow <= value && value <= record.controllerHigh);
    }
    case GroupTrigger::Program:
        return set(group, inputs_.program == record.program);
    case GroupTrigger::Manual:
        return;
    }
}

void ActiveGroups::set(ZGroup& group, bool active) {
    if (active)
        activate(&group);
    else
        deactivate(&group);
}

void ActiveGroups::activate(ZGroup* group) {
    if (group == nullptr || group->active) return;
    group->active = true;
    active_.push_back(group);
    if (onChange) onChange();
}

void ActiveGroups::deactivate(ZGroup* group) {
    if (group == nullptr || !group->active) return;
    group->active = false;
    active_.erase(std::find(active_.begin(), active_.end(), group));
    if (onChange) onChange();
}

void ActiveGroups::deactivateAll() {
    for (ZGroup* group : active_)
        group->active = false;
    active_.clear();
}

} // namespace zarno
