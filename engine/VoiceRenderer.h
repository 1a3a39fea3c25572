// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Modulation.h"
#include "engine/VoiceKernel.h"
#include "engine/VoicePool.h"
#include "engine/VoiceRow.h"

#include <array>

namespace zarno {

// Renders all playing voices of a pool through one segment and adds them to the mix, voice by voice in pool
// order: the same sums, to the bit, as sample by sample. Voices are taken eight at a time. First where they
// read and how loud they are is computed for the whole run, side by side where nothing special can happen;
// then each one's frames are interpolated and mixed in turn. A frame at which something does happen (the end,
// a waiting start, the seam of a ring) is rendered by the voice itself. Audio thread.
class VoiceRenderer {
  public:
    explicit VoiceRenderer(Modulation& modulation, const VoiceKernels& kernels = voiceKernels())
        : modulation_(modulation)
        , kernels_(&kernels) {}

    // left and right hold segment.frames samples.
    void render(const VoicePool& pool, const ModulationSegment& segment, float* left, float* right);

    // For tests and benchmarks: another set of kernels; null renders every frame by the voices themselves.
    void useKernels(const VoiceKernels* kernels) { kernels_ = kernels; }

  private:
    static constexpr int batchSize = VoiceLanes::count;

    struct Mix {
        float *left, *right;
    };

    void renderRun(const VoicePool& pool, const SegmentRun& run, const Mix& mix);
    void renderBatch(const SegmentRun& run, const Mix& mix);
    void advanceShared(const SegmentRun& run);
    void finish(int member, const SegmentRun& run, const Mix& mix);
    void mixRow(int member, const SegmentRun& run, int from, int to, const Mix& mix);
    void renderExactly(ZVoice& voice, const ModulationSegment& segment, int index, const Mix& mix);
    FrameWindow windowOf(const ZVoice& voice) const;

    Modulation& modulation_;
    const VoiceKernels* kernels_;

    // The batch at hand.
    int members_ = 0;
    std::array<ZVoice*, batchSize> voice_{};
    std::array<FrameWindow, batchSize> window_{};
    std::array<FrameRow*, batchSize> row_{};
    std::array<int, batchSize> done_{};    // the segment's sample up to which the row is filled
    std::array<FrameRow, batchSize> rows_; // entry 0 is the run's first sample
};

} // namespace zarno
