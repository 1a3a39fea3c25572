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
    for (int i = 0; i < frames; ++i)
        segment.lfo[i] = lfo_.step();
    fillPitch(segment, frames);
    fillLevels(segment, frames);
}

void Modulation::fillPitch(ModulationSegment& segment, int frames) {
    const float target = bendTarget_.load(std::memory_order_relaxed);
    segment.movingFrames = 0;
    for (int i = 0; i < frames; ++i) {
        if (bendCurrent_ != target) {
            moveToward(bendCurrent_, target);
            segment.movingFrames = i + 1;
        }
        segment.bendRatio[i] = bendCurrent_;
    }
    const bool vibrato = context_.lfoMovesPitch;
    segment.maxPitchRatio = 0.0f;
    for (int i = 0; i < frames; ++i) {
        segment.vibrato[i] = vibrato ? semitoneRatio(segment.lfo[i] * context_.lfoDepth) : 1.0f;
        segment.maxPitchRatio = std::max(segment.maxPitchRatio, segment.bendRatio[i] * segment.vibrato[i]);
    }
}

void Modulation::fillLevels(ModulationSegment& segment, int frames) {
    const auto destination = static_cast<LfoDestination>(settings_.lfoDestination.load());
    const float depth = context_.lfoDepth;
    for (int i = 0; i < frames; ++i) {
        moveToward(expressionCurrent_, expressionTarget_);
        if (destination == LfoDestination::Expression) expressionCurrent_ = std::fabs(segment.lfo[i] * depth);
        if (destination == LfoDestination::Pan) placePan(segment.lfo[i] * depth);
        segment.expression[i] = expressionCurrent_;
        segment.panLeft[i] = pan_.left;
        segment.panRight[i] = pan_.right;
    }
    // The LFO writes the pan setting itself: the sound stays where the LFO left it. Adding 0 makes -0 a 0, so
    // that at depth 0 the setting, and with it a saved project, stays as it is.
    if (destination == LfoDestination::Pan) settings_.pan = segment.lfo[frames - 1] * depth + 0.0f;
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
