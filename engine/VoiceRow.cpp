// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VoiceRow.h"

#include "engine/Tables.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace zarno {
namespace {

// Room for the rounding of the recurrences when their ends are estimated.
constexpr double positionMargin = 1.000001;
constexpr float envelopeMargin = 1e-4f;

struct Slope {
    float target, coefficient;
};

} // namespace

// The part of a voice's state that changes from frame to frame, held apart until the frame is known to be an
// ordinary one.
struct VoiceRow::Step {
    double position, increment;
    float envelope, glide;
    bool attacking, detuned;

    explicit Step(const ZVoice& voice)
        : position(voice.position_)
        , increment(voice.increment_)
        , envelope(voice.envelope_)
        , glide(voice.glideCurrent_)
        , attacking(voice.attacking_)
        , detuned(voice.detuned_) {}

    void store(ZVoice& voice) const {
        voice.position_ = position;
        voice.increment_ = increment;
        voice.envelope_ = envelope;
        voice.glideCurrent_ = glide;
        voice.attacking_ = attacking;
        voice.detuned_ = detuned;
    }

    // False when the voice would end.
    bool stepEnvelope(const ZVoice& voice) {
        const ZoneGains& gains = voice.gains_;
        if (voice.releasing_) {
            if (!voice.killing_ && gains.releaseCoefficient == 0.0f) return false;
            const float coefficient =
                voice.killing_ ? voice.context_.killCoefficient : gains.releaseCoefficient;
            envelope = approach(envelope, releaseTarget, coefficient);
            return !(envelope <= 0.0f);
        }
        if (attacking) {
            envelope = approach(envelope, attackTarget, gains.attackCoefficient);
            if (envelope > 1.0f) {
                envelope = 1.0f;
                attacking = false;
            }
        } else if (gains.decayCoefficient != 0.0f) {
            envelope = approach(envelope, gains.sustainLevel, gains.decayCoefficient);
        }
        return true;
    }

    void follow(const ZVoice& voice, const SegmentRun& run, int index) {
        if (voice.glideTime_ > 0.0f) {
            const float remaining = voice.glideTarget_ - glide;
            glide = std::fabs(voice.glideStep_) <= std::fabs(remaining) ? glide + voice.glideStep_
                                                                        : voice.glideTarget_;
        } else if (!run.pitchFollows && !detuned) {
            return;
        }
        const ModulationSegment& segment = run.segment;
        const float ratio = segment.bendRatio[index] * glide * segment.vibrato[index];
        increment = voice.baseIncrement_ * static_cast<double>(ratio);
        detuned = voice.context_.lfoMovesPitch && voice.context_.lfoDepth > 0.0f;
    }
};

int VoiceRow::advance(ZVoice& voice, const FrameWindow& window, const SegmentRun& run, int index,
                      FrameRow& row) {
    if (window.data == nullptr || voice.position_ < window.origin || !(voice.position_ < window.limit))
        return index;
    const double loopEnd = voice.jumpsBack_ ? static_cast<double>(voice.zone_->record.loopEnd) : 0.0;
    const double loopStart = static_cast<double>(voice.zone_->record.loopStart);
    row.envelopeHeld = false;
    Step step(voice);
    for (; index < run.to; ++index) {
        Step next = step;
        if (voice.jumpsBack_ && loopEnd <= step.position + step.increment) next.position = loopStart;
        if (!next.stepEnvelope(voice)) break;
        next.follow(voice, run, index);
        next.position += next.increment;
        if (!(next.position < window.limit)) break;
        row.position[index - run.from] = step.position;
        row.envelope[index - run.from] = next.envelope;
        step = next;
    }
    step.store(voice);
    return index;
}

bool VoiceRow::canShareLanes(const ZVoice& voice, const FrameWindow& window, const SegmentRun& run) {
    if (voice.glideTime_ > 0.0f || (voice.detuned_ && !run.pitchFollows)) return false;

    const double frames = run.frames();
    double increment = voice.increment_;
    if (run.pitchFollows) {
        const double followed = voice.baseIncrement_ * static_cast<double>(voice.glideCurrent_) *
                                static_cast<double>(run.segment.maxPitchRatio);
        if (std::isnan(followed)) return false; // no pitch at all, moved by an infinite ratio
        increment = std::max(increment, followed);
    }
    const double furthest = (voice.position_ + (frames + 1.0) * increment) * positionMargin;
    if (voice.position_ < window.origin || !(furthest < window.limit)) return false;
    if (voice.jumpsBack_ && !(furthest + increment < static_cast<double>(voice.zone_->record.loopEnd)))
        return false;

    const float envelope = voice.envelope_;
    if (voice.releasing_) {
        const float coefficient =
            voice.killing_ ? voice.context_.killCoefficient : voice.gains_.releaseCoefficient;
        if (coefficient == 0.0f) return false;
        return envelope + (releaseTarget - envelope) * coefficient * static_cast<float>(frames) >
               envelopeMargin;
    }
    if (voice.attacking_)
        return envelope +
                   (attackTarget - envelope) * voice.gains_.attackCoefficient * static_cast<float>(frames) <
               1.0f - envelopeMargin;
    return true;
}

void VoiceRow::putIntoLane(const ZVoice& voice, VoiceLanes& lanes, int lane, bool pitchFollows) {
    const ZoneGains& gains = voice.gains_;
    Slope slope{gains.sustainLevel, gains.decayCoefficient};
    if (voice.releasing_)
        slope = {releaseTarget, voice.killing_ ? voice.context_.killCoefficient : gains.releaseCoefficient};
    else if (voice.attacking_)
        slope = {attackTarget, gains.attackCoefficient};
    else if (slope.coefficient == 0.0f)
        slope.target = voice.envelope_; // stands still, whatever the sustain level
    lanes.position[lane] = voice.position_;
    lanes.increment[lane] = pitchFollows ? voice.baseIncrement_ : voice.increment_;
    lanes.glide[lane] = voice.glideCurrent_;
    lanes.envelope[lane] = voice.envelope_;
    lanes.target[lane] = slope.target;
    lanes.coefficient[lane] = slope.coefficient;
}

void VoiceRow::holdEnvelope(FrameRow& row, float envelope) {
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); }; // tells 0 from -0
    if (row.envelopeHeld && bits(row.heldEnvelope) == bits(envelope)) return;
    std::fill_n(row.envelope, kernelFrames, envelope);
    row.envelopeHeld = true;
    row.heldEnvelope = envelope;
}

void VoiceRow::takeFromLane(ZVoice& voice, const VoiceLanes& lanes, int lane, const SegmentRun& run) {
    voice.position_ = lanes.position[lane];
    voice.envelope_ = lanes.envelope[lane];
    if (!run.pitchFollows) return;
    const ModulationSegment& segment = run.segment;
    const int last = run.to - 1;
    const float ratio = segment.bendRatio[last] * voice.glideCurrent_ * segment.vibrato[last];
    voice.increment_ = voice.baseIncrement_ * static_cast<double>(ratio);
    voice.detuned_ = voice.context_.lfoMovesPitch && voice.context_.lfoDepth > 0.0f;
}

} // namespace zarno
