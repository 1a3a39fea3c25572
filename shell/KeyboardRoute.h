// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <atomic>

namespace zarno {

class ZInstrument;

/// The way of the host's notes while a window is open: to the keyboard state of the panel, so that its
/// keys move, and to the engine as they came: the same bytes at the same sample offset as without a window.
/// Keys pressed on the panel reach the engine at the start of the next block.
class KeyboardRoute final : private juce::MidiKeyboardState::Listener {
  public:
    explicit KeyboardRoute(ZInstrument& engine)
        : engine_(engine) {}

    /// [message thread] From now on host notes pass through `state`, whose changes all reach the engine. Null
    /// takes the route away; the state may be deleted afterwards. No other code turns this state into events.
    void publish(juce::MidiKeyboardState* state);

    /// [message thread] Held while the window itself changes the published state (mouse, computer keys, all
    /// notes off). A host note that comes meanwhile goes to the engine directly; its key follows at the end.
    class Hold {
      public:
        explicit Hold(KeyboardRoute& route)
            : route_(route) {
            route_.lock_.enter();
        }
        ~Hold() { route_.leave(); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

      private:
        KeyboardRoute& route_;
    };

    /// [audio thread] Hands one note-on or note-off (status, key, velocity) on, by way of the panel when
    /// there is one. Waits for no window being built or closed.
    void handOver(const juce::MidiMessage& note, int samplePosition);

  private:
    void handleNoteOn(juce::MidiKeyboardState*, int channel, int key, float velocity) override;
    void handleNoteOff(juce::MidiKeyboardState*, int channel, int key, float velocity) override;
    void post(const juce::MidiMessage& note, int samplePosition);
    void show(const juce::MidiMessage& note);
    void remember(const juce::MidiMessage& note);
    void catchUp();
    void leave();

    ZInstrument& engine_;
    juce::SpinLock lock_; // guards all below and what state_ points to; the audio thread only tries it
    juce::MidiKeyboardState* state_ = nullptr;
    bool isShowing_ = false; // the state changes for a note that the engine has: the listener posts nothing

    // Host notes that found the lock taken. For each key: a bit for every channel that has changed in the
    // lower half, whether it is on now in the upper half.
    std::array<std::atomic<std::uint32_t>, 128> missed_{};
    std::atomic<bool> hasMissed_{false};
};

} // namespace zarno
