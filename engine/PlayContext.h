// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

namespace zarno {

// What a voice may see of its instrument. The instrument owns it and keeps it true; voices hold a reference.
// Audio thread only (and whoever renders while the audio thread is kept out).
struct PlayContext {
    explicit PlayContext(const InstrumentSettings& s)
        : settings(s) {}

    const InstrumentSettings& settings;

    double sampleRate = 44100.0;      // Hz; 44100 is the rate at which all times and pitches are given
    float killCoefficient = 0.02242f; // fade of a stolen voice, per sample
    std::uint32_t rateGeneration = 0; // changes with sampleRate: derived values made before it are stale

    // The modulators as they stand at the sample being rendered; between samples, as the last one left them.
    float bendRatio = 1.0f;
    bool pitchMoving = false; // the bend ratio changed at this sample
    float lfoValue = 0.0f;    // -1..+1

    // Settings that a voice reads at every sample, taken over by takeSettings() so that they hold still
    // while a segment is rendered.
    bool lfoMovesPitch = false;
    float lfoDepth = 0.0f;

    int lastKey = 60; // key of the note started last

    void takeSettings();
};

} // namespace zarno
