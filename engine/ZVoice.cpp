// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZVoice.h"

#include "engine/Interpolation.h"
#include "engine/Tables.h"
#include "engine/ZGroup.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

// Stands for an increment that no sample is long enough for; keeps positions finite.
constexpr double hugeIncrement = 1e15;

// Records may name any frame; positions stay where a double counts whole frames.
double framePosition(std::uint64_t frame) {
    constexpr double furthest = 9.0e15;
    return std::min(static_cast<double>(frame), furthest);
}

bool isPoly(const InstrumentSettings& settings) {
    return settings.playMode == static_cast<std::int32_t>(PlayMode::Poly);
}

float keyDistance(int from, int to) {
    return static_cast<float>(static_cast<std::int64_t>(from) - to);
}

} // namespace

bool ZVoice::start(ZZone* zone, int key, int velocity, int channelTag) {
    if (zone == nullptr || zone->lengthInFrames == 0) return false;
    if (killing_) {
        pending_ = {zone, key, velocity, channelTag};
        return false;
    }
    const bool fresh = !playing_;
    if (fresh) startFresh(*zone, key, velocity);
    startGlide(fresh, key);
    updateIncrement();
    playing_ = true;
    channelTag_ = channelTag;
    sustained_ = false;
    return true;
}

void ZVoice::startFresh(ZZone& zone, int key, int velocity) {
    zone_ = &zone;
    quality_ = context_.settings.quality;
    position_ = framePosition(zone.record.startFrame);
    jumpsBack_ = loops(zone.record);
    envelope_ = 0.0f;
    releasing_ = false;
    attacking_ = true;
    key_ = startKey_ = key;
    glideCurrent_ = 1.0f;
    velocityGain_ = zone.record.ignoreVelocity != 0 ? 1.0f : velocityGain(context_.settings, velocity);
    takeGains();
    setBaseIncrement();
}

void ZVoice::setBaseIncrement() {
    const ZoneRecord& record = zone_->record;
    double ratio = 1.0;
    if (record.fixedPitch == 0)
        ratio =
            semitoneRatio(keyDistance(startKey_, record.rootKey) + finiteOr(record.fineTune, 0.0f) / 100.0f);
    baseIncrement_ = ratio * zone_->fileSampleRate / context_.sampleRate;
}

void ZVoice::startGlide(bool fresh, int key) {
    const bool poly = isPoly(context_.settings);
    glideTime_ = poly ? 0.0f : finiteOr(context_.settings.glideTime, 0.0f);
    if (fresh) {
        glideCurrent_ = semitoneRatio(keyDistance(context_.lastKey, key));
        glideTarget_ = 1.0f;
    } else {
        glideTarget_ = semitoneRatio(keyDistance(key, startKey_));
        key_ = key;
    }
    if (glideTime_ <= 0.0f)
        glideCurrent_ = glideTarget_;
    else
        glideStep_ = static_cast<float>((glideTarget_ - glideCurrent_) /
                                        (static_cast<double>(glideTime_) * context_.sampleRate / 1000.0));
    if (poly) glideCurrent_ = glideTarget_ = 1.0f;
}

void ZVoice::updateIncrement() {
    float ratio = context_.bendRatio * glideCurrent_;
    if (context_.lfoMovesPitch) ratio *= semitoneRatio(context_.lfoValue * context_.lfoDepth);
    detuned_ = context_.lfoMovesPitch && context_.lfoDepth > 0.0f;
    increment_ = baseIncrement_ * static_cast<double>(ratio);
    if (!(increment_ < hugeIncrement)) increment_ = hugeIncrement;
}

void ZVoice::takeGains() {
    gains_ = zone_->gains(context_.sampleRate, context_.rateGeneration);
    leftGain_ = gains_.gain * gains_.leftPan * velocityGain_;
    rightGain_ = gains_.gain * gains_.rightPan * velocityGain_;
}

bool ZVoice::render(float& left, float& right) {
    if (!playing_) return false;
    left = right = 0.0f;
    readInterpolated(position_, left, right);
    // The fraction by which the position overshoots the loop end is dropped, on purpose.
    if (jumpsBack_ && framePosition(zone_->record.loopEnd) <= position_ + increment_)
        position_ = framePosition(zone_->record.loopStart);
    stepEnvelope();
    left *= envelope_;
    right *= envelope_;
    left *= leftGain_;
    right *= rightGain_;
    followModulation();
    advance();
    return playing_;
}

void ZVoice::followModulation() {
    if (glideTime_ > 0.0f) {
        const float remaining = glideTarget_ - glideCurrent_;
        glideCurrent_ =
            std::fabs(glideStep_) <= std::fabs(remaining) ? glideCurrent_ + glideStep_ : glideTarget_;
        updateIncrement();
    } else if (context_.pitchMoving || context_.lfoDepth > 0.0f || detuned_) {
        // detuned_: once more after the depth went back to 0, so that no held note stays off its pitch.
        updateIncrement();
    }
}

void ZVoice::advance() {
    position_ += increment_;
    if (position_ >= framePosition(zone_->record.endFrame)) finish();
}

void ZVoice::stepEnvelope() {
    if (releasing_) {
        if (!killing_ && gains_.releaseCoefficient == 0.0f) envelope_ = 0.0f;
        const float coefficient = killing_ ? context_.killCoefficient : gains_.releaseCoefficient;
        envelope_ = approach(envelope_, releaseTarget, coefficient);
        if (envelope_ <= 0.0f) finish();
    } else if (attacking_) {
        envelope_ = approach(envelope_, attackTarget, gains_.attackCoefficient);
        if (envelope_ > 1.0f) {
            envelope_ = 1.0f;
            attacking_ = false;
        }
    } else if (gains_.decayCoefficient != 0.0f) {
        envelope_ = approach(envelope_, gains_.sustainLevel, gains_.decayCoefficient);
    }
}

void ZVoice::readInterpolated(double position, float& left, float& right) {
    const auto index = static_cast<std::int64_t>(position);
    const auto t = static_cast<float>(position - static_cast<double>(index));
    if (t == 0.0f) {
        readFrame(index, left, right);
        return;
    }
    float l[4], r[4];
    for (int tap = 0; tap < 4; ++tap)
        readFrame(index + tap - 1, l[tap], r[tap]);
    left = interpolate4(t, l[0], l[1], l[2], l[3], quality_);
    right = zone_->mono ? left : interpolate4(t, r[0], r[1], r[2], r[3], quality_);
}

void ZVoice::readFrame(std::int64_t index, float& left, float& right) {
    zone_->readFrame(index, left, right);
}

FrameWindow ZVoice::frameWindow() const {
    const SampleMemory* memory = zone_->memory.get();
    if (memory == nullptr || memory->frames() == 0) return {};
    FrameWindow window;
    window.sixteenBit = memory->isSixteenBit();
    window.stereo = memory->channels() > 1;
    window.data = window.sixteenBit ? static_cast<const void*>(memory->shorts()) : memory->floats();
    window.limit = std::min({framePosition(zone_->record.endFrame), static_cast<double>(memory->frames()),
                             FrameWindow::maxFrames});
    return window;
}

void ZVoice::release() {
    if (playing_) releasing_ = true;
}

void ZVoice::finish() {
    playing_ = false;
    if (!killing_) return;
    killing_ = false;
    // Forgotten before it happens, so that it happens once.
    const PendingStart next = pending_;
    pending_ = {};
    if (next.zone != nullptr) start(next.zone, next.key, next.velocity, next.channelTag);
}

void ZVoice::kill() {
    if (killing_) {
        finish();
        return;
    }
    killing_ = true;
    release();
}

void ZVoice::cancelPending() {
    killing_ = false;
    pending_ = {};
}

bool ZVoice::pendingMatches(int key, int channelTag) const {
    return killing_ && pending_.zone != nullptr && pending_.key == key &&
           (pending_.channelTag == channelTag || pending_.channelTag == 0);
}

void ZVoice::stop() {
    cancelPending();
    finish();
}

void ZVoice::sampleRateChanged(double previousRate) {
    if (!playing_) return;
    takeGains();
    setBaseIncrement();
    glideStep_ = static_cast<float>(glideStep_ * previousRate / context_.sampleRate);
    updateIncrement();
}

} // namespace zarno
