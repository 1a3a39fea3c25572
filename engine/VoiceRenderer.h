// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Modulation.h"
#include "engine/VoicePool.h"

namespace zarno {

// Renders all playing voices of a pool through one segment and adds them to the mix, voice by voice in pool
// order: the same sums as sample by sample. Audio thread.
class VoiceRenderer {
  public:
    explicit VoiceRenderer(Modulation& modulation)
        : modulation_(modulation) {}

    // left and right hold segment.frames samples.
    void render(const VoicePool& pool, const ModulationSegment& segment, float* left, float* right);

  private:
    void renderExactly(ZVoice& voice, const ModulationSegment& segment, int from, int to, float* left,
                       float* right);

    Modulation& modulation_;
};

} // namespace zarno
