// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/AudioGate.h"
#include "shell/WindowErrors.h"

#include <juce_core/juce_core.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace zarno {

class CZSP;

/// What the entry keeps about one effect that a host has opened.
struct OpenEffect {
    OpenEffect(Vst2::AEffect& effect, CZSP& opened, Vst2::audioMasterCallback callback)
        : processor(opened)
        , host(callback)
        , gate(effect)
        , wrapper(effect.dispatcher) {}

    CZSP& processor;
    const Vst2::audioMasterCallback host;
    AudioGate gate;
    const Vst2::AEffectDispatcherProc wrapper;
    std::optional<WindowErrors> windowErrors; ///< from the first opening of the editor on

    /// The state as of now. The block stays valid until the same thread asks again.
    juce::MemoryBlock& freshChunk();

  private:
    std::mutex lock_;
    std::map<std::thread::id, juce::MemoryBlock> chunks_;
};

/// The effects of this module that are open. The effect's own fields belong to the wrapper and the host, so
/// they are found by address.
class OpenEffects {
  public:
    void add(Vst2::AEffect& effect, CZSP& processor, Vst2::audioMasterCallback host);
    /// find no longer returns the effect. The caller owns what was kept about it. Null for an unknown one.
    std::unique_ptr<OpenEffect> remove(const Vst2::AEffect* effect);
    /// [any] Null for one that is not open. Takes no lock: the audio thread asks, too.
    OpenEffect* find(const Vst2::AEffect* effect) const;

  private:
    // As many places as effects were ever open at once. Places are reused and never freed while this lives.
    struct Place {
        std::atomic<const Vst2::AEffect*> effect{nullptr};
        std::unique_ptr<OpenEffect> open; // written before effect, read after it
        std::unique_ptr<Place> next;
    };

    std::mutex adding_;
    std::atomic<Place*> first_{nullptr};
    std::unique_ptr<Place> places_;
};

} // namespace zarno
