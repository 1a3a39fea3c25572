// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/reference/PlainInstrument.h"

#include "platform/DenormalGuard.h"

#include <algorithm>
#include <cmath>

namespace zarno {

PlainInstrument::PlainInstrument(const Groups& groups, const InstrumentSettings& settings, const Clock& clock)
    : clock_(clock)
    , voices_(static_cast<std::size_t>(std::clamp(int{settings.polyphony}, 1, 1024)), PlainVoice(state_)) {
    state_.settings = settings;
    lastVelocity_.fill(127);
    noteOnRendered_.fill(-INFINITY);
    for (const auto& group : groups) {
        groups_.push_back({group.get(), {}});
        for (const auto& zone : group->zones())
            groups_.back().zones.push_back({zone.get(), group.get()});
    }
    prepareZones();
}

void PlainInstrument::prepareZones() {
    for (Group& group : groups_)
        for (PlainZone& zone : group.zones)
            zone.prepare(state_.sampleRate);
}

void PlainInstrument::setSampleRate(double hertz) {
    if (hertz == state_.sampleRate) return;
    const double previous = state_.sampleRate;
    msBeforeThisRate_ = renderedMs(0);
    samplesAtThisRate_ = 0;
    state_.sampleRate = hertz;
    state_.killCoefficient = static_cast<float>(1 - std::pow(1 - 0.02242, 44100 / hertz));
    lfo_.setRate(finiteOr(state_.settings.lfoRate, 3), hertz);
    reverb_.setSampleRate(hertz);
    prepareZones();
    for (PlainVoice& voice : voices_)
        voice.takeSampleRate(previous);
}

void PlainInstrument::applySettings() {
    expressionTarget_ = decibelGain(finiteOr(state_.settings.volume, 0));
    if (expressionTarget_ < 1e-6f) expressionTarget_ = 0;
    pan_ = PlainPan::at(finiteOr(state_.settings.pan, 0));
    lfo_.setRate(finiteOr(state_.settings.lfoRate, 3), state_.sampleRate);
    lfo_.buildTable(state_.settings.lfoShape);
}

int PlainInstrument::playingVoices() const {
    return static_cast<int>(std::ranges::count_if(voices_, &PlainVoice::isPlaying));
}

void PlainInstrument::renderBlock(float* left, float* right, int numSamples) {
    const DenormalGuard guard;
    for (int s = 0; s < numSamples; ++s) {
        left[s] = right[s] = 0;
        processEvents(s, s == numSamples - 1);
        stepBend();
        stepExpression();
        stepLfo();
        for (PlainVoice& voice : voices_) {
            float l, r;
            if (!voice.render(l, r)) continue;
            left[s] += l * expression_ * pan_.left;
            right[s] += r * expression_ * pan_.right;
        }
        if (const float send = finiteOr(state_.settings.reverbSend, 0); send > 0) {
            float wetLeft, wetRight;
            reverb_.process(left[s], right[s], wetLeft, wetRight);
            left[s] += wetLeft * send;
            right[s] += wetRight * send;
        }
        for (float* out : {left + s, right + s})
            *out = std::isnan(*out) ? 0 : std::clamp(*out, -1.0f, 1.0f);
    }
    samplesAtThisRate_ += numSamples;
}

double PlainInstrument::renderedMs(std::int64_t sample) const {
    return msBeforeThisRate_ + static_cast<double>(samplesAtThisRate_ + sample) * 1000.0 / state_.sampleRate;
}

static void moveToward(float& current, float target) {
    if (std::fabs(target - current) < 0.01f)
        current = target;
    else
        current += current < target ? 0.01f : -0.01f;
}

void PlainInstrument::stepBend() {
    state_.pitchMoving = state_.bend != bendTarget_;
    moveToward(state_.bend, bendTarget_);
}

void PlainInstrument::stepExpression() {
    moveToward(expression_, expressionTarget_);
}

void PlainInstrument::stepLfo() {
    state_.lfoValue = lfo_.step();
    const float swing = state_.lfoValue * state_.lfoDepth();
    if (state_.settings.lfoDestination == 2) expression_ = std::fabs(swing);
    if (state_.settings.lfoDestination == 3) {
        state_.settings.pan = swing;
        pan_ = PlainPan::at(swing);
    }
}

// Events

void PlainInstrument::postEvent(int type, int channel, int data1, int data2, std::uint32_t sampleOffset) {
    if (sampleOffset == immediateOffset) {
        const double elapsed = blockStart_ < 0 ? 0 : clock_.nowMs() - blockStart_;
        sampleOffset = static_cast<std::uint32_t>(std::max(elapsed, 0.0) / 44100.0);
    }
    pendingEvents_.push_back({static_cast<std::uint8_t>(type | channel), static_cast<std::uint8_t>(data1),
                              static_cast<std::uint8_t>(data2), sampleOffset});
}

void PlainInstrument::processEvents(int sample, bool isLast) {
    if (sample == 0) {
        blockStart_ = clock_.nowMs();
        activeEvents_ = std::move(pendingEvents_);
        pendingEvents_.clear();
        nextEvent_ = 0;
    }
    sample_ = sample;
    while (nextEvent_ < activeEvents_.size()) {
        if (activeEvents_[nextEvent_].sampleOffset > static_cast<std::uint32_t>(sample) && !isLast) return;
        dispatch(activeEvents_[nextEvent_++]);
    }
    activeEvents_.clear();
    nextEvent_ = 0;
}

void PlainInstrument::dispatch(const EngineEvent& event) {
    updateActiveGroups(event);
    for (Group* group : active_)
        dealToGroup(*group, event);
    if (event.isNoteOff()) {
        while (PlainVoice* voice = findVoiceForNoteOff(event.data1, event.channel() + 1))
            voice->release();
        return;
    }
    switch (event.type()) {
    case midi::polyAftertouch:
        if (state_.settings.lfoDepthSource == 2) state_.settings.lfoDepth = event.data2 / 127.0f;
        break;
    case midi::programChange:
        program_ = event.data1;
        break;
    case midi::pitchBend: {
        const int v = event.data2 * 128 + event.data1;
        const float amount = v == 8192 ? 0.0f : static_cast<float>(v) * 0.00012207031f - 1;
        bendTarget_ = semitoneRatio(static_cast<float>(bendRange_) * amount);
        break;
    }
    case midi::controller:
        handleController(event.data1, event.data2, event.channel());
        break;
    }
}

void PlainInstrument::setPitchBend(float amount) {
    bendTarget_ = semitoneRatio(static_cast<float>(bendRange_) * amount);
}

void PlainInstrument::handleController(int number, int value, int channel) {
    InstrumentSettings& settings = state_.settings;
    const auto v = static_cast<float>(value);
    controllers_[static_cast<std::size_t>(number)] = value;
    switch (number) {
    case 1:
        if (settings.lfoDepthSource == 1) settings.lfoDepth = v / 127;
        return;
    case 5:
        settings.glideTime = v / 1000;
        break;
    case 6:
        bendRange_ = value;
        return;
    case 7:
        settings.volume = (127 - v) / 127 * -60;
        break;
    case 8:
    case 10:
        settings.pan = (v - 64) * 0.015625f;
        break;
    case 11:
        expressionTarget_ = decibelGain((127 - v) / 127 * -30);
        return;
    case 64:
        pedalDown_ = value >= 64;
        for (PlainVoice& voice : voices_)
            if (!pedalDown_ && voice.isPlaying() && voice.isSustained()) voice.release();
        return;
    case 68:
        settings.playMode = value < 64 ? 0 : 2;
        break;
    case 91:
        settings.reverbSend = v / 127;
        break;
    case 120:
    case 123:
        for (PlainVoice& voice : voices_) {
            voice.cancelPending();
            voice.release();
        }
        return;
    case 121:
        for (int each = 0; each < 128; ++each)
            if (each != 6 && each != 7 && each != 8 && each != 10 && each != 11 && each != 40 && each != 43 &&
                each != 89 && each != 121)
                postEvent(midi::controller, channel, each, 0, immediateOffset);
        return;
    case 126:
        settings.playMode = 1;
        break;
    case 127:
        settings.playMode = 0;
        break;
    default:
        return;
    }
    applySettings();
}

// Groups

void PlainInstrument::activateGroup(std::size_t index) {
    setActive(groups_[index], true);
}

void PlainInstrument::setActive(Group& group, bool active) {
    const auto found = std::ranges::find(active_, &group);
    if (active && found == active_.end()) active_.push_back(&group);
    if (!active && found != active_.end()) active_.erase(found);
}

void PlainInstrument::updateActiveGroups(const EngineEvent& event) {
    for (Group& group : groups_) {
        const GroupRecord& record = group.record();
        if (record.excluded) {
            setActive(group, false);
            continue;
        }
        switch (record.trigger) {
        case 0:
            setActive(group, true);
            break;
        case 1:
            setActive(group, event.channel() == record.channel);
            break;
        case 2:
            if (event.type() != midi::noteOn || event.data1 != record.keyswitchNote) break;
            active_.clear();
            setActive(group, true);
            break;
        case 3: {
            const int value = controllers_[static_cast<std::size_t>(int{record.controllerNumber})];
            setActive(group, record.controllerLow <= value && value <= record.controllerHigh);
            break;
        }
        case 4:
            setActive(group, program_ == record.program);
            break;
        }
    }
}

void PlainInstrument::dealToGroup(Group& group, const EngineEvent& event) {
    const std::size_t key = event.data1;
    const GroupRecord& record = group.record();
    if (event.isNoteOn()) {
        if (!record.releaseTrigger) startNoteInGroup(group, event.data1, event.data2);
        lastVelocity_[key] = event.data2;
        noteOnRendered_[key] = renderedMs(sample_);
        noteOnLag_[key] = lagMs();
    } else if (event.isNoteOff() && record.releaseTrigger && !pedalDown_) {
        int velocity = lastVelocity_[key] == 0 ? 127 : lastVelocity_[key];
        if (const double decay = finiteOr(record.releaseDecayTime, 0); decay > 0) {
            const double elapsed =
                renderedMs(sample_) - noteOnRendered_[key] + std::max(lagMs() - noteOnLag_[key], 0.0);
            velocity = decay > elapsed ? static_cast<int>((1 - elapsed / decay) * velocity) : 0;
        }
        startNoteInGroup(group, event.data1, velocity);
    }
}

void PlainInstrument::startNoteInGroup(Group& group, int key, int velocity) {
    const GroupRecord& record = group.record();
    const int channelTag = record.trigger == 1 ? record.channel + 1 : 0;
    if (record.selectionMode == 0) {
        for (const PlainZone& zone : group.zones)
            if (zone.matches(key, velocity)) startZone(zone, key, velocity, channelTag);
    } else if (const PlainZone* zone = selectZone(group, key, velocity)) {
        startZone(*zone, key, velocity, channelTag);
    }
    if (state_.settings.lfoDepthSource == 3)
        state_.settings.lfoDepth = velocityCurveValue(state_.settings.velocityCurve, velocity);
}

void PlainInstrument::startZone(const PlainZone& zone, int key, int velocity, int channelTag) {
    chokeExclusive(zone.record().exclusiveId);
    PlainVoice* voice = allocateVoice();
    voice->startTime = renderedMs(sample_);
    voice->start(&zone, key, velocity, channelTag);
    state_.lastKey = key;
}

const PlainZone* PlainInstrument::selectZone(Group& group, int key, int velocity) {
    const int n = static_cast<int>(group.zones.size());
    if (n == 0) return nullptr;
    const bool randomRobin = group.record().selectionMode == 2;
    const bool totalRandom = group.record().selectionMode == 3;
    const int start = randomRobin || totalRandom ? random_.below(n) : (group.lastPlayed + 1) % n;
    for (int examined = 1; examined <= (randomRobin ? 2 * n : n); ++examined) {
        const int index = (start + examined - 1) % n;
        if (!group.zones[static_cast<std::size_t>(index)].matches(key, velocity)) continue;
        if (randomRobin && index == group.lastPlayed && examined <= n) continue;
        group.lastPlayed = index;
        return &group.zones[static_cast<std::size_t>(index)];
    }
    return nullptr;
}

// Voices

PlainVoice* PlainInstrument::allocateVoice() {
    if (state_.settings.playMode == 1)
        for (PlainVoice& voice : voices_)
            voice.release();
    if (state_.settings.playMode == 2)
        for (PlainVoice& voice : voices_)
            if (voice.isPlaying() && !voice.isReleasing()) return &voice;
    for (PlainVoice& voice : voices_)
        if (!voice.isPlaying()) return &voice;
    PlainVoice* oldest = &*std::ranges::min_element(voices_, {}, &PlainVoice::startTime);
    oldest->cancelPending();
    oldest->kill();
    return oldest;
}

PlainVoice* PlainInstrument::findVoiceForNoteOff(int key, int channelTag) {
    for (PlainVoice& voice : voices_) {
        if (!voice.isPlaying() || voice.isReleasing()) {
            if (voice.pendingMatches(key, channelTag)) voice.cancelPending();
            continue;
        }
        if (isOneShot(voice.zone()->record()) || voice.key() != key) continue;
        if (voice.channelTag() != 0 && voice.channelTag() != channelTag) continue;
        if (voice.zone()->group->record.releaseTrigger) continue;
        if (!pedalDown_) return &voice;
        voice.setSustained();
    }
    return nullptr;
}

void PlainInstrument::chokeExclusive(int id) {
    if (id == 0) return;
    for (PlainVoice& voice : voices_)
        if (voice.isPlaying() && !voice.isReleasing() && voice.zone()->record().exclusiveId == id)
            voice.kill();
}

} // namespace zarno
