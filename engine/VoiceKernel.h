// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

// The inner loops of the voice renderer, once for the SSE2 baseline and once for AVX2, chosen at run time.
// Both give the same bits as ZVoice::render: the same operations in the same order, no fused multiply-adds.
// They test nothing: the caller has made sure that within the given frames no voice ends, loops, changes its
// envelope stage or leaves its frame window.

// Frames that a kernel handles in one call at most.
inline constexpr int kernelFrames = 128;

// Where one voice reads at each frame, and its envelope there.
struct FrameRow {
    alignas(32) double position[kernelFrames];
    alignas(32) float envelope[kernelFrames];

    // The row's owner notes when all of the envelope has one value, so as not to write it again.
    bool envelopeHeld = false;
    float heldEnvelope = 0.0f;
};

// Positions and envelopes of eight voices side by side: recurrences cannot be spread over frames, so voices
// fill the lanes. Lanes without a voice hold zeros.
struct VoiceLanes {
    static constexpr int count = 8;
    alignas(32) double position[count];
    alignas(32) double increment[count]; // constant form: frames a sample; following form: at pitch ratio 1
    alignas(32) float glide[count];      // following form only
    alignas(32) float envelope[count];
    alignas(32) float target[count]; // where the envelope is heading
    alignas(32) float coefficient[count];
};

// One voice's frames on their way into the mix.
struct MixJob {
    const void* data; // sample frame 0 of the window: interleaved 16-bit integers or floats
    double origin;    // the position that data stands at
    const double* position;
    const float* envelope;
    const float* expression; // the segment's levels
    const float* panLeft;
    const float* panRight;
    float leftGain, rightGain;
    float* left; // the mix
    float* right;
    int frames;
};

struct VoiceKernels {
    using Mix = void (*)(const MixJob&);

    const char* name;
    // Writes down position and envelope of every lane for each frame and moves the lanes on by as many.
    void (*advance)(VoiceLanes& lanes, FrameRow* rows, int frames);
    // The same where all envelopes stand still: positions alone.
    void (*advanceHeld)(VoiceLanes& lanes, FrameRow* rows, int frames);
    // The same where the increment follows bend and vibrato at every frame.
    void (*advanceFollowing)(VoiceLanes& lanes, FrameRow* rows, int frames, const float* bend,
                             const float* vibrato);
    // Interpolates, applies the gains and adds to the mix. Indices: quality, 16-bit, stereo.
    Mix mix[3][2][2];
};

// The best that this processor runs.
const VoiceKernels& voiceKernels();

// Each by itself, for tests and benchmarks. avx2Kernels() is null where the processor lacks AVX2.
const VoiceKernels& sse2Kernels();
const VoiceKernels* avx2Kernels();

} // namespace zarno
