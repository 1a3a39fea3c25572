// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Modulation.h"

#include "engine/Tables.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

// Bend ratio and expression gain move by this much a sample at every rate, on purpose.
constexpr float smoothingStep = 0.01f;

constexpr float silentGain = 1e-6f;

} // namespace

Modulation::Modulation(InstrumentSettings& settings, PlayContext& context)
    : settings_(settings)
    , context_(context) {
    applySettings();
    expressionCurrent_ = expressionTarget_;
}

// A value so large that a step does not change it goes to its target at once: it would never come back.
void Modulation::moveToward(float& current, float target) {
    const float moved = current + (target > current ? smoothingStep : -smoothingStep);
    const bool arrives = std::fabs(target - current) < smoothingStep || moved == current;
    current = arrives ? target : moved;
}

void Modulation::fill(ModulationSegment& segment, int frames) {
    segment.frames = frames;
    segment.modulated = context_.lfoDepth > 0.0f;
    fillLfo(segment, frames);
    fillPitch(segment, frames);
    fillExpression(segment, frames);
    fillPan(segment, frames);
}

void Modulation::fillLfo(ModulationSegment& segment, int frames) {
    if (context_.lfoDepth == 0.0f) {
        segment.lfo.hold(lfo_.skipTo(frames));
        return;
    }
    float* lfo = segment.lfo.move();
    for (int i = 0; i < frames; ++i)
        lfo[i] = lfo_.step();
}

void Modulation::fillPitch(ModulationSegment& segment, int frames) {
    const float target = bendTarget_.load(std::memory_order_relaxed);
    segment.movingFrames = 0;
    float highest = bendCurrent_;
    if (bendCurrent_ == target) {
        segment.bendRatio.hold(bendCurrent_);
    } else {
        float* bend = segment.bendRatio.move();
        highest = 0.0f;
        for (int i = 0; i < frames; ++i) {
            if (bendCurrent_ != target) {
                moveToward(bendCurrent_, target);
                segment.movingFrames = i + 1;
            }
            bend[i] = bendCurrent_;
            highest = std::max(highest, bend[i]);
        }
    }
    segment.maxPitchRatio = std::max(0.0f, highest);
    if (!context_.lfoMovesPitch || context_.lfoDepth == 0.0f) {
        segment.vibrato.hold(1.0f);
        return;
    }
    float* vibrato = segment.vibrato.move();
    segment.maxPitchRatio = 0.0f;
    for (int i = 0; i < frames; ++i) {
        vibrato[i] = semitoneRatio(segment.lfo[i] * context_.lfoDepth);
        segment.maxPitchRatio = std::max(segment.maxPitchRatio, segment.bendRatio[i] * vibrato[i]);
    }
}

void Modulation::fillExpression(ModulationSegment& segment, int frames) {
    const bool followsLfo = settings_.lfoDestination == static_cast<std::int32_t>(LfoDestination::Expression);
    const float depth = context_.lfoDepth;
    const bool stands = followsLfo ? depth == 0.0f : expressionCurrent_ == expressionTarget_;
    if (stands) {
        expressionCurrent_ = followsLfo ? 0.0f : expressionTarget_;
        segment.expression.hold(expressionCurrent_);
        return;
    }
    float* expression = segment.expression.move();
    for (int i = 0; i < frames; ++i) {
        moveToward(expressionCurrent_, expressionTarget_);
        if (followsLfo) expressionCurrent_ = std::fabs(segment.lfo[i] * depth);
        expression[i] = expressionCurrent_;
    }
}

void Modulation::fillPan(ModulationSegment& segment, int frames) {
    const bool followsLfo = settings_.lfoDestination == static_cast<std::int32_t>(LfoDestination::Pan);
    const float depth = context_.lfoDepth;
    if (followsLfo && depth != 0.0f) {
        float *left = segment.panLeft.move(), *right = segment.panRight.move();
        for (int i = 0; i < frames; ++i) {
            placePan(segment.lfo[i] * depth);
            left[i] = pan_.left;
            right[i] = pan_.right;
        }
    } else {
        if (followsLfo) placePan(0.0f);
        segment.panLeft.hold(pan_.left);
        segment.panRight.hold(pan_.right);
    }
    // The LFO writes the pan setting itself: the sound stays where the LFO left it. Adding 0 makes -0 a 0, so
    // that at depth 0 the setting, and with it a saved project, stays as it is.
    if (followsLfo) settings_.pan = segment.lfo[frames - 1] * depth + 0.0f;
}

void Modulation::showSample(const ModulationSegment& segment, int index) {
    context_.bendRatio = segment.bendRatio[index];
    context_.pitchMoving = index < segment.movingFrames;
    context_.lfoValue = segment.lfo[index];
}

void Modulation::placePan(float pan) {
    pan_ = panGains(pan);
}

void Modulation::setBendValue(int value) {
    const float amount = value == 8192 ? 0.0f : static_cast<float>(value) * 0.00012207031f - 1.0f;
    setBendAmount(amount);
}

void Modulation::setBendAmount(float amount) {
    bendAmount_.store(amount, std::memory_order_relaxed);
    const float range = static_cast<float>(bendRange_.load(std::memory_order_relaxed));
    bendTarget_.store(semitoneRatio(range * finiteOr(amount, 0.0f)), std::memory_order_relaxed);
}

void Modulation::applySettings() {
    const float volume = decibelGain(finiteOr(settings_.volume, 0.0f));
    expressionTarget_ = volume < silentGain ? 0.0f : volume;
    placePan(finiteOr(settings_.pan, 0.0f));
    lfo_.setRate(finiteOr(settings_.lfoRate, 3.0f), sampleRate_);
    lfo_.setShape(settings_.lfoShape);
}

void Modulation::setSampleRate(double sampleRate) {
    sampleRate_ = sampleRate;
    lfo_.setRate(finiteOr(settings_.lfoRate, 3.0f), sampleRate);
}

} // namespace zarno
