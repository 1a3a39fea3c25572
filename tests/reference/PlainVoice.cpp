// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/reference/PlainVoice.h"

#include <cmath>

namespace zarno {

static float interpolate4(float t, float ym1, float y0, float y1, float y2, int quality) {
    if (quality == 0) return y0 + (y1 - y0) * t;
    if (quality == 1)
        return ((((y0 - y1) * 3 - ym1 + y2) * 0.5f * t + y1 * 2 + ym1 - (y0 * 5 + y2) * 0.5f) * t +
                (y1 - ym1) * 0.5f) *
                   t +
               y0;
    if (quality != 2) return 0;
    const float z = t - 0.5f;
    const float even1 = ym1 + y2, odd1 = y2 - ym1, even2 = y0 + y1, odd2 = y1 - y0;
    const float c0 = even1 * 0.04131402f + even2 * 0.45868972f;
    const float c1 = odd1 * 0.17577925f + odd2 * 0.48068026f;
    const float c2 = even1 * 0.24614027f - even2 * 0.246185f;
    const float c3 = odd1 * 0.10174986f - odd2 * 0.36030924f;
    return ((c3 * z + c2) * z + c1) * z + c0;
}

bool PlainVoice::start(const PlainZone* zone, int key, int velocity, int channelTag) {
    if (!zone || zone->zone->lengthInFrames == 0) return false;
    if (killing_) {
        pending_ = {zone, key, velocity, channelTag};
        return false;
    }
    const bool fresh = !playing_;
    if (fresh) startFresh(zone, key, velocity);
    startGlide(key, fresh);
    key_ = key;
    updateIncrement();
    playing_ = true;
    channelTag_ = channelTag;
    sustained_ = false;
    return true;
}

void PlainVoice::startFresh(const PlainZone* zone, int key, int velocity) {
    const ZoneRecord& record = zone->record();
    zone_ = zone;
    stream_.start(*zone->zone);
    position_ = stream_.isOn() ? 0 : static_cast<double>(record.startFrame);
    envelope_ = 0;
    releasing_ = false;
    attacking_ = true;
    startKey_ = key;
    quality_ = state_.settings.quality;
    pitchRatio_ = 1;
    if (!record.fixedPitch)
        pitchRatio_ = semitoneRatio(static_cast<float>(std::int64_t{key} - record.rootKey) +
                                    finiteOr(record.fineTune, 0) / 100);
    baseIncrement_ = pitchRatio_ * zone->zone->fileSampleRate / state_.sampleRate;
    velocityGain_ = record.ignoreVelocity ? 1.0f : velocityGain(state_.settings, velocity);
}

void PlainVoice::startGlide(int key, bool fresh) {
    const bool poly = state_.settings.playMode == 0;
    glideTime_ = poly ? 0.0f : finiteOr(state_.settings.glideTime, 0);
    if (fresh) {
        glideCurrent_ = semitoneRatio(static_cast<float>(state_.lastKey - key));
        glideTarget_ = 1;
    } else {
        glideTarget_ = semitoneRatio(static_cast<float>(key - startKey_));
    }
    if (glideTime_ <= 0)
        glideCurrent_ = glideTarget_;
    else
        glideStep_ =
            static_cast<float>((glideTarget_ - glideCurrent_) / (glideTime_ * state_.sampleRate / 1000));
    if (poly) glideCurrent_ = glideTarget_ = 1;
}

void PlainVoice::takeSampleRate(double previous) {
    if (!playing_) return;
    baseIncrement_ = pitchRatio_ * zone_->zone->fileSampleRate / state_.sampleRate;
    glideStep_ = static_cast<float>(glideStep_ * previous / state_.sampleRate);
    updateIncrement();
}

void PlainVoice::updateIncrement() {
    float ratio = state_.bend * glideCurrent_;
    if (state_.settings.lfoDestination == 1) ratio *= semitoneRatio(state_.lfoValue * state_.lfoDepth());
    depthWasOn_ = state_.lfoDepth() > 0;
    increment_ = baseIncrement_ * ratio;
}

bool PlainVoice::render(float& left, float& right) {
    if (!playing_) return false;
    left = right = 0;
    readInterpolated(left, right);
    const double loopEnd = static_cast<double>(zone_->record().loopEnd);
    if (!stream_.isOn() && loops(zone_->record()) && loopEnd <= position_ + increment_)
        position_ = static_cast<double>(zone_->record().loopStart);
    stepEnvelope();
    left *= envelope_;
    right *= envelope_;
    left *= zone_->gain * zone_->pan.left * velocityGain_;
    right *= zone_->gain * zone_->pan.right * velocityGain_;
    if (glideTime_ > 0)
        stepGlide();
    else if (state_.pitchMoving || state_.lfoDepth() > 0 || depthWasOn_)
        updateIncrement();
    position_ += increment_;
    if (position_ >= (stream_.isOn() ? stream_.end() : static_cast<double>(zone_->record().endFrame)))
        finish();
    else if (stream_.isOn())
        stream_.advanced(position_);
    return playing_;
}

void PlainVoice::stepGlide() {
    if (std::fabs(glideStep_) <= std::fabs(glideTarget_ - glideCurrent_))
        glideCurrent_ += glideStep_;
    else
        glideCurrent_ = glideTarget_;
    updateIncrement();
}

void PlainVoice::stepEnvelope() {
    if (releasing_) {
        if (zone_->release == 0 && !killing_) envelope_ = 0;
        envelope_ += (-0.5873016f - envelope_) * (killing_ ? state_.killCoefficient : zone_->release);
        if (envelope_ <= 0) finish();
    } else if (attacking_) {
        envelope_ += (1.5873016f - envelope_) * zone_->attack;
        if (envelope_ > 1) {
            envelope_ = 1;
            attacking_ = false;
        }
    } else if (zone_->decay != 0) {
        envelope_ += (zone_->sustain - envelope_) * zone_->decay;
    }
}

void PlainVoice::readInterpolated(float& left, float& right) const {
    if (!(position_ < 9e18)) return; // far outside any sample
    const auto i = static_cast<std::int64_t>(position_);
    const auto t = static_cast<float>(position_ - static_cast<double>(i));
    const auto read = [&](int channel) {
        if (t == 0) return frame(i, 0, channel);
        return interpolate4(t, frame(i, -1, channel), frame(i, 0, channel), frame(i, 1, channel),
                            frame(i, 2, channel), quality_);
    };
    left = read(0);
    right = zone_->zone->mono ? left : read(1);
}

// A streaming voice does not look across the seams of its buffers.
float PlainVoice::frame(std::int64_t index, std::int64_t tap, int channel) const {
    if (!stream_.isOn()) return zone_->frame(index + tap, channel);
    const std::int64_t ring = stream_.ringFrames();
    index %= ring;
    if (index == 0 && tap < 0) tap = 0;
    if (index == ring - 1 && tap > 0) tap = 0;
    if (index == ring - 2 && tap == 2) tap = 1;
    return stream_.frame(index + tap, channel);
}

void PlainVoice::finish() {
    playing_ = false;
    if (!killing_) return;
    killing_ = false;
    const auto next = pending_;
    pending_.zone = nullptr;
    if (next.zone) start(next.zone, next.key, next.velocity, next.channelTag);
}

void PlainVoice::kill() {
    if (killing_) {
        finish();
        return;
    }
    killing_ = true;
    release();
}

void PlainVoice::cancelPending() {
    killing_ = false;
    pending_.zone = nullptr;
}

bool PlainVoice::pendingMatches(int key, int channelTag) const {
    return killing_ && pending_.zone && pending_.key == key &&
           (pending_.channelTag == channelTag || pending_.channelTag == 0);
}

} // namespace zarno
