// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EventDispatcher.h"

#include "engine/Tables.h"

#include <algorithm>

namespace zarno {

EventDispatcher::EventDispatcher(Targets targets, const ActiveGroups::Groups& groups)
    : to_(targets)
    , activeGroups_(groups, {controllers_, program_}) {
    lastVelocity_.fill(127);
}

void EventDispatcher::dispatch(const EngineEvent& event, const NoteTime& now) {
    to_.context.takeSettings();
    activeGroups_.update(event);
    if (event.isNoteOn() || event.isNoteOff()) dealToGroups(event, now);

    switch (event.type()) {
    case midi::noteOff:
        releaseKey(event.data1, event.channel());
        break;
    case midi::noteOn:
        if (event.data2 == 0) releaseKey(event.data1, event.channel());
        break;
    case midi::polyAftertouch:
        setDepthFrom(LfoDepthSource::AfterTouch, static_cast<float>(event.data2) / 127.0f);
        break;
    case midi::programChange:
        program_ = event.data1;
        break;
    case midi::pitchBend:
        to_.modulation.setBendValue(event.data2 * 128 + event.data1);
        break;
    case midi::controller:
        storeController(event.data1, event.data2);
        handleController(event.data1, event.data2, event.channel());
        break;
    default:
        break;
    }
}

void EventDispatcher::storeController(int number, int value) {
    auto& stored = controllers_[static_cast<std::size_t>(number)];
    if (stored.exchange(static_cast<std::uint8_t>(value), std::memory_order_relaxed) != value)
        activeGroups_.controllerMoved(number);
}

void EventDispatcher::dealToGroups(const EngineEvent& event, const NoteTime& now) {
    const auto deal = [&](ZGroup& group) { dealToGroup(group, event, now); };
    // Each active group sets a depth that follows the velocity, between the notes of those before and after
    // it.
    if (to_.settings.lfoDepthSource == static_cast<std::int32_t>(LfoDepthSource::Velocity))
        for (ZGroup* group : activeGroups_.list())
            deal(*group);
    else
        activeGroups_.forEachAt(event.data1, deal);
    // Not stored when no group is active.
    if (!event.isNoteOn() || activeGroups_.list().empty()) return;
    lastVelocity_[event.data1] = event.data2;
    noteOnTime_[event.data1] = now;
}

void EventDispatcher::dealToGroup(ZGroup& group, const EngineEvent& event, const NoteTime& now) {
    const int key = event.data1;
    if (event.isNoteOn() && !group.isReleaseTrigger())
        startNoteInGroup(group, key, event.data2, now);
    else if (event.isNoteOff() && group.isReleaseTrigger() && !sustainPedal_)
        startNoteInGroup(group, key, releaseVelocity(group, key, now), now);
}

// The velocity the key was struck with, falling to 0 over the group's decay time since then.
int EventDispatcher::releaseVelocity(const ZGroup& group, int key, const NoteTime& now) const {
    const auto at = static_cast<std::size_t>(key);
    const int velocity = lastVelocity_[at] == 0 ? 127 : lastVelocity_[at];
    const double decay = finiteOr(group.record.releaseDecayTime, 0.0f);
    if (!(decay > 0.0)) return velocity;
    const double elapsed = now.msSince(noteOnTime_[at]);
    if (!(decay > elapsed)) return 0;
    return std::min(static_cast<int>((1.0 - elapsed / decay) * velocity), 127);
}

void EventDispatcher::startNoteInGroup(ZGroup& group, int key, int velocity, const NoteTime& now) {
    const GroupRecord& record = group.record;
    const bool byChannel = record.trigger == static_cast<std::int32_t>(GroupTrigger::Channel);
    const int channelTag = byChannel ? record.channel + 1 : 0;

    if (record.selectionMode == static_cast<std::int32_t>(SelectionMode::Stack))
        group.forEachMatch(key, velocity,
                           [&](ZZone& zone) { startZone(zone, key, velocity, channelTag, now); });
    else if (ZZone* zone = group.selectZone(key, velocity, to_.random))
        startZone(*zone, key, velocity, channelTag, now);

    if (to_.settings.lfoDepthSource == static_cast<std::int32_t>(LfoDepthSource::Velocity))
        setDepthFrom(LfoDepthSource::Velocity, velocityCurveValue(to_.settings.velocityCurve, velocity));
}

void EventDispatcher::startZone(ZZone& zone, int key, int velocity, int channelTag, const NoteTime& now) {
    to_.pool.chokeExclusive(zone.record.exclusiveId);
    ZVoice* voice = to_.pool.allocate(to_.settings.playMode);
    if (voice == nullptr) return;
    // Both clocks only grow, so the order of rendered times is that of ages by the larger of both.
    voice->setStartTime(now.renderedMs);
    voice->start(&zone, key, velocity, channelTag);
    to_.context.lastKey = key;
}

void EventDispatcher::releaseKey(int key, int channel) {
    while (ZVoice* voice = to_.pool.findForNoteOff(key, channel + 1, sustainPedal_))
        voice->release();
}

void EventDispatcher::releaseAll() {
    storeController(64, 0);
    sustainPedal_ = false;
    to_.pool.releaseAll();
}

void EventDispatcher::setDepthFrom(LfoDepthSource source, float depth) {
    if (to_.settings.lfoDepthSource != static_cast<std::int32_t>(source)) return;
    to_.settings.lfoDepth = depth;
    to_.context.takeSettings();
}

void EventDispatcher::handleController(int number, int value, int channel) {
    InstrumentSettings& settings = to_.settings;
    const float amount = static_cast<float>(value) / 127.0f;
    const float rest = static_cast<float>(127 - value) / 127.0f;
    switch (number) {
    case 1:
        setDepthFrom(LfoDepthSource::ModWheel, amount);
        return;
    case 5:
        settings.glideTime = static_cast<float>(value) / 1000.0f;
        break; // 0.127 ms at most, on purpose
    case 6:
        to_.modulation.setBendRange(value);
        return; // whatever RPN was selected before, on purpose
    case 7:
        settings.volume = rest * -60.0f;
        break;
    case 8:
    case 10:
        settings.pan = static_cast<float>(value - 64) * 0.015625f;
        break;
    case 11:
        to_.modulation.setExpressionTarget(decibelGain(rest * -30.0f));
        return;
    case 64:
        sustainPedal_ = value >= 64;
        if (!sustainPedal_) to_.pool.releaseSustained();
        return;
    case 68:
        settings.playMode = static_cast<std::int32_t>(value < 64 ? PlayMode::Poly : PlayMode::Legato);
        break;
    case 91:
        settings.reverbSend = amount;
        break;
    case 120:
    case 123:
        to_.pool.releaseAll();
        return;
    case 121:
        resetControllers(channel);
        return;
    case 126:
        settings.playMode = static_cast<std::int32_t>(PlayMode::Mono);
        break;
    case 127:
        settings.playMode = static_cast<std::int32_t>(PlayMode::Poly);
        break;
    default:
        return;
    }
    applySettings();
}

} // namespace zarno
