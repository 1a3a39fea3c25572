// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Envelope.h"
#include "engine/HeldTrack.h"
#include "engine/PlayContext.h"
#include "engine/ZLFO.h"

#include <atomic>

namespace zarno {

// The modulators of a stretch of samples, one entry a sample, as every voice sees them. What stands still is not
// written out again.
struct ModulationSegment {
    static constexpr int maxFrames = 128;

    int frames = 0;
    int movingFrames = 0;       // how many samples from the first on the bend ratio changes at
    bool modulated = false;     // the LFO depth is above 0: voices follow at every sample
    float maxPitchRatio = 1.0f; // of bend and vibrato together
    using Track = HeldTrack<maxFrames>;
    Track bendRatio;
    Track lfo;     // at depth 0, where it has no effect, its last value alone
    Track vibrato; // the LFO as a pitch ratio; 1 when it goes elsewhere
    Track expression;
    Track panLeft, panRight;
};

// What moves all voices of an instrument together: bend, expression, pan and the LFO. Audio thread, but for
// setBendAmount.
class Modulation {
  public:
    Modulation(InstrumentSettings& settings, PlayContext& context);

    // Steps every modulator through the next frames (1..maxFrames) and writes their values down. The context
    // is left as it was: voices that need a sample's values take them with showSample().
    void fill(ModulationSegment& segment, int frames);

    // Puts the modulators of one sample of the segment where voices see them.
    void showSample(const ModulationSegment& segment, int index);

    // 14-bit MIDI value, 8192 is the middle.
    void setBendValue(int value);
    // -1..+1. Any thread; acts at the next segment.
    void setBendAmount(float amount);
    // The amount set last, by either. Any thread.
    float bendAmount() const { return bendAmount_.load(std::memory_order_relaxed); }
    void setBendRange(int semitones) { bendRange_.store(semitones, std::memory_order_relaxed); }

    void setExpressionTarget(float gain) { expressionTarget_ = gain; }

    // Volume, pan and LFO as the settings have them now.
    void applySettings();

    void setSampleRate(double sampleRate);

  private:
    static void moveToward(float& current, float target);
    void placePan(float pan);
    void fillLfo(ModulationSegment& segment, int frames);
    void fillPitch(ModulationSegment& segment, int frames);
    void fillExpression(ModulationSegment& segment, int frames);
    void fillPan(ModulationSegment& segment, int frames);

    InstrumentSettings& settings_;
    PlayContext& context_;
    ZLFO lfo_;
    std::atomic<int> bendRange_{2}; // semitones
    std::atomic<float> bendTarget_{1.0f}, bendAmount_{0.0f};
    float bendCurrent_ = 1.0f;
    float expressionCurrent_ = 1.0f, expressionTarget_ = 1.0f;
    PanGains pan_{1.0f, 1.0f};
    double sampleRate_ = 44100.0;
};

} // namespace zarno
