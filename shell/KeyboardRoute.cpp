// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/KeyboardRoute.h"

#include "engine/ZInstrument.h"
#include "platform/ThreadRole.h"

namespace zarno {

void KeyboardRoute::publish(juce::MidiKeyboardState* state) {
    thread::mustBe(thread::message);
    juce::MidiKeyboardState* former = nullptr;
    {
        const juce::SpinLock::ScopedLockType hold(lock_);
        former = std::exchange(state_, nullptr);
    }
    if (former != nullptr) former->removeListener(this);
    if (state == nullptr) return;
    state->addListener(this);
    const juce::SpinLock::ScopedLockType hold(lock_);
    state_ = state;
}

void KeyboardRoute::handOver(const juce::MidiMessage& note, int samplePosition) {
    thread::mustBe(thread::audio);
    const juce::SpinLock::ScopedTryLockType hold(lock_);
    // A note-off whose key the panel does not hold would end there: the note began before the window opened.
    const bool throughPanel = hold.isLocked() && state_ != nullptr &&
                              (note.isNoteOn() || state_->isNoteOn(note.getChannel(), note.getNoteNumber()));
    if (!throughPanel) return post(note, samplePosition);
    offsetInHand_ = static_cast<std::uint32_t>(samplePosition);
    state_->processNextMidiEvent(note);
    offsetInHand_ = immediateOffset;
}

void KeyboardRoute::post(const juce::MidiMessage& note, int samplePosition) {
    const juce::uint8* bytes = note.getRawData();
    engine_.postEvent(bytes[0] & 0xF0, bytes[0] & 0x0F, bytes[1], bytes[2],
                      static_cast<std::uint32_t>(samplePosition));
}

void KeyboardRoute::handleNoteOn(juce::MidiKeyboardState*, int channel, int key, float velocity) {
    engine_.postEvent(midi::noteOn, channel - 1, key, juce::roundToInt(velocity * 127.0f), offsetInHand_);
}

void KeyboardRoute::handleNoteOff(juce::MidiKeyboardState*, int channel, int key, float) {
    engine_.postEvent(midi::noteOff, channel - 1, key, 0, offsetInHand_);
}

} // namespace zarno
