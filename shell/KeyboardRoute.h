// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace zarno {

class ZInstrument;

/// The way of the host's notes while a window is open: through the keyboard state of the panel, so that its
/// keys move, and on to the engine with the sample offset they came with. Keys pressed on the panel take the
/// second half of that way.
class KeyboardRoute final : private juce::MidiKeyboardState::Listener {
  public:
    explicit KeyboardRoute(ZInstrument& engine)
        : engine_(engine) {}

    /// [message thread] From now on host notes pass through `state`, whose changes all reach the engine. Null
    /// takes the route away; the state may be deleted afterwards. Nobody else turns this state into events.
    void publish(juce::MidiKeyboardState* state);

    /// [message thread] Held while the window itself changes the published state (mouse, computer keys, all
    /// notes off). A host note that comes meanwhile goes past the panel.
    class Hold {
      public:
        explicit Hold(KeyboardRoute& route)
            : hold_(route.lock_) {}

      private:
        const juce::SpinLock::ScopedLockType hold_;
    };

    /// [audio thread] Hands one note-on or note-off (status, key, velocity) on, by way of the panel when
    /// there is one. Waits for no window being built or closed.
    void handOver(const juce::MidiMessage& note, int samplePosition);

  private:
    void handleNoteOn(juce::MidiKeyboardState*, int channel, int key, float velocity) override;
    void handleNoteOff(juce::MidiKeyboardState*, int channel, int key, float velocity) override;
    void post(const juce::MidiMessage& note, int samplePosition);

    ZInstrument& engine_;
    juce::SpinLock lock_; // guards all below and what state_ points to; the audio thread only tries it
    juce::MidiKeyboardState* state_ = nullptr;
    // What the listener gives the engine: the offset of the note being handed over, else "now". Not of the
    // thread's own: a module's such variables take memory at their first use on a thread.
    std::uint32_t offsetInHand_ = immediateOffset;
};

} // namespace zarno
