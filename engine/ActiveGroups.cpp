// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ActiveGroups.h"

namespace zarno {

void ActiveGroups::adopt() {
    active_.reserve(all_.size());
    drawing_.reserve(all_.size());
    gathered_.reserve(all_.size());
    states_.resize(all_.size());
    for (std::size_t place = 0; place < all_.size(); ++place)
        all_[place]->join(&changes_, static_cast<std::uint32_t>(place));
    changes_.records.fetch_add(1, std::memory_order_release);
    changes_.zones.fetch_add(1, std::memory_order_release);
}

void ActiveGroups::takeChanges() {
    if (changes_.records.load(std::memory_order_acquire) != recordsSeen_) readRecords();
    if (changes_.zones.load(std::memory_order_acquire) != zonesSeen_) fileByKey();
}

void ActiveGroups::readRecords() {
    recordsSeen_ = changes_.records.load(std::memory_order_acquire);
    settled_ = false;
    keyswitches_.reset();
    controllersHeard_.reset();
    channelsHeard_ = programsHeard_ = false;
    drawing_.clear();
    for (std::size_t place = 0; place < states_.size(); ++place) {
        const GroupRecord& record = all_[place]->record;
        State& state = states_[place];
        state.trigger = static_cast<GroupTrigger>(record.trigger.load());
        state.excluded = record.excluded != 0;
        state.drawsAtRandom = all_[place]->drawsAtRandom();
        state.low = record.controllerLow;
        state.high = record.controllerHigh;
        if (state.drawsAtRandom) drawing_.push_back(static_cast<std::uint32_t>(place));
        if (state.trigger == GroupTrigger::Channel) state.wanted = record.channel;
        if (state.trigger == GroupTrigger::Note) state.wanted = record.keyswitchNote;
        if (state.trigger == GroupTrigger::Controller) state.wanted = record.controllerNumber;
        if (state.trigger == GroupTrigger::Program) state.wanted = record.program;
        channelsHeard_ = channelsHeard_ || state.trigger == GroupTrigger::Channel;
        programsHeard_ = programsHeard_ || state.trigger == GroupTrigger::Program;
        if (state.wanted < 0 || state.wanted > 127) continue;
        const auto number = static_cast<std::size_t>(state.wanted);
        if (state.trigger == GroupTrigger::Note) keyswitches_.set(number);
        if (state.trigger == GroupTrigger::Controller) controllersHeard_.set(number);
    }
}

void ActiveGroups::fileByKey() {
    zonesSeen_ = changes_.zones.load(std::memory_order_acquire);
    for (std::size_t key = 0; key < byKey_.size(); ++key) {
        byKey_[key].clear();
        for (std::size_t place = 0; place < all_.size(); ++place)
            if (all_[place]->hasZonesAt(static_cast<int>(key)))
                byKey_[key].push_back(static_cast<std::uint32_t>(place));
    }
}

bool ActiveGroups::concerns(const EngineEvent& event) const {
    return inputsMoved_ || (channelsHeard_ && event.channel() != channelSeen_) ||
           (programsHeard_ && inputs_.program != programSeen_) ||
           (event.type() == midi::noteOn && keyswitches_[event.data1]);
}

void ActiveGroups::update(const EngineEvent& event) {
    takeChanges();
    if (settled_ && !concerns(event)) return;
    inputsMoved_ = false;
    channelSeen_ = event.channel();
    programSeen_ = inputs_.program;
    bool switched = false;
    for (std::size_t place = 0; place < states_.size(); ++place)
        switched = updateGroup(place, event) || switched;
    settled_ = !switched;
}

// True when a keyswitch has dropped the groups before it, whose own triggers bring them back at the next
// event.
bool ActiveGroups::updateGroup(std::size_t place, const EngineEvent& event) {
    const State& state = states_[place];
    if (state.excluded) {
        set(place, false);
        return false;
    }
    switch (state.trigger) {
    case GroupTrigger::Always:
        set(place, true);
        break;
    case GroupTrigger::Channel:
        // Events of every type count: the last event's channel decides.
        set(place, event.channel() == state.wanted);
        break;
    case GroupTrigger::Note:
        // Any velocity, 0 too. Later groups are evaluated afresh in this same pass.
        if (event.type() != midi::noteOn || event.data1 != state.wanted) break;
        deactivateAll();
        set(place, true);
        return true;
    case GroupTrigger::Controller: {
        // The event itself is stored after this, so a controller or program counts from the next event on.
        const bool exists = state.wanted >= 0 && state.wanted < 128;
        const int value =
            exists
                ? inputs_.controllers[static_cast<std::size_t>(state.wanted)].load(std::memory_order_relaxed)
                : -1;
        set(place, value >= 0 && state.low <= value && value <= state.high);
        break;
    }
    case GroupTrigger::Program:
        set(place, inputs_.program == state.wanted);
        break;
    case GroupTrigger::Manual:
        break;
    }
    return false;
}

void ActiveGroups::set(std::size_t place, bool active) {
    if (states_[place].active == active) return;
    if (active)
        activate(all_[place].get());
    else
        deactivate(all_[place].get());
}

void ActiveGroups::activate(ZGroup* group) {
    if (group == nullptr || group->active) return;
    settled_ = false;
    group->active = true;
    states_[group->place()].active = true;
    states_[group->place()].activatedAt = ++activations_;
    active_.push_back(group);
    if (onChange) onChange();
}

void ActiveGroups::deactivate(ZGroup* group) {
    if (group == nullptr || !group->active) return;
    settled_ = false;
    group->active = false;
    states_[group->place()].active = false;
    active_.erase(std::find(active_.begin(), active_.end(), group));
    if (onChange) onChange();
}

void ActiveGroups::deactivateAll() {
    settled_ = false;
    for (ZGroup* group : active_) {
        group->active = false;
        states_[group->place()].active = false;
    }
    active_.clear();
}

void ActiveGroups::gather(int key) {
    gathered_.clear();
    for (const std::uint32_t place : byKey_[static_cast<std::size_t>(key)])
        if (states_[place].active && !states_[place].drawsAtRandom) gathered_.push_back(place);
    for (const std::uint32_t place : drawing_)
        if (states_[place].active) gathered_.push_back(place);
    const auto earlier = [this](std::uint32_t a, std::uint32_t b) {
        return states_[a].activatedAt < states_[b].activatedAt;
    };
    if (!std::is_sorted(gathered_.begin(), gathered_.end(), earlier))
        std::sort(gathered_.begin(), gathered_.end(), earlier);
}

} // namespace zarno
