// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/Vst2Interface.h"

#include <atomic>
#include <vector>

namespace zarno {

/// Shields JUCE's VST2 wrapper from hosts that process after suspend (use-after-free), or pass null or shared
/// outputs with a block longer than announced (overrun). The wrapper always sees two separate outputs, and is
/// resumed and suspended while no thread processes.
class AudioGate {
  public:
    explicit AudioGate(Vst2::AEffect& effect)
        : effect_(effect)
        , wrapperProcess_(effect.processReplacing) {}

    /// [audio] One block. Silence while the gate is closed. Outputs may be null, or one for both channels:
    /// that one gets the right channel, as the wrapper has it.
    void process(float** outputs, int frames);

    /// [audio] Around a call that hands events over. False: the gate is closed; the caller drops the events.
    bool enter();
    void leave() { inside_.fetch_sub(1, std::memory_order_release); }

    /// [any but audio] From now on blocks are silent; returns when the audio thread is outside.
    void close();
    /// [any but audio, closed] Room for null or shared outputs of such blocks; a longer one makes more.
    void reserve(int blockSize);
    void open() { closed_.store(false); }
    bool isClosed() const { return closed_.load(); }

  private:
    void processAside(float* left, float* right, int frames);

    Vst2::AEffect& effect_;
    const Vst2::AEffectProcessProc wrapperProcess_;
    std::atomic<bool> closed_{false}; // open at first: the wrapper resumes itself for hosts that never do
    std::atomic<int> inside_{0};
    std::vector<float> aside_; // both channels, where the host gave no place for them
};

} // namespace zarno
