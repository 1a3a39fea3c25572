// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VoiceRenderer.h"

namespace zarno {

void VoiceRenderer::render(const VoicePool& pool, const ModulationSegment& segment, float* left,
                           float* right) {
    for (const auto& voice : pool.voices()) {
        if (!voice->isPlaying()) continue;
        voice->takeGains();
        renderExactly(*voice, segment, 0, segment.frames, left, right);
    }
    modulation_.showSample(segment, segment.frames - 1);
}

void VoiceRenderer::renderExactly(ZVoice& voice, const ModulationSegment& segment, int from, int to,
                                  float* left, float* right) {
    for (int i = from; i < to && voice.isPlaying(); ++i) {
        modulation_.showSample(segment, i);
        float l = 0.0f, r = 0.0f;
        if (!voice.render(l, r)) continue;
        left[i] += l * segment.expression[i] * segment.panLeft[i];
        right[i] += r * segment.expression[i] * segment.panRight[i];
    }
}

} // namespace zarno
