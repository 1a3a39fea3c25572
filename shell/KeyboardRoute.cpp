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
    const Hold hold(*this);
    for (auto& key : missed_)
        key = 0;
    hasMissed_ = false;
    state_ = state;
}

void KeyboardRoute::handOver(const juce::MidiMessage& note, int samplePosition) {
    thread::mustBe(thread::audio);
    post(note, samplePosition);
    {
        const juce::SpinLock::ScopedTryLockType hold(lock_);
        if (hold.isLocked()) {
            catchUp();
            return show(note);
        }
    }
    remember(note);
    // Either this finds the lock free, or its owner finds the note when it leaves.
    const juce::SpinLock::ScopedTryLockType hold(lock_);
    if (hold.isLocked()) catchUp();
}

void KeyboardRoute::post(const juce::MidiMessage& note, int samplePosition) {
    const juce::uint8* bytes = note.getRawData();
    engine_.postEvent(bytes[0] & 0xF0, bytes[0] & 0x0F, bytes[1], bytes[2],
                      static_cast<std::uint32_t>(samplePosition));
}

// Moves the panel's key for a note that the engine has already. The caller has the lock.
void KeyboardRoute::show(const juce::MidiMessage& note) {
    if (state_ == nullptr) return;
    isShowing_ = true;
    state_->processNextMidiEvent(note);
    isShowing_ = false;
}

void KeyboardRoute::remember(const juce::MidiMessage& note) {
    const std::uint32_t changed = 1u << (note.getChannel() - 1), on = changed << 16;
    auto& key = missed_[static_cast<std::size_t>(note.getNoteNumber() & 127)];
    key.fetch_and(~on);
    key.fetch_or(note.isNoteOn() ? changed | on : changed);
    hasMissed_ = true;
}

// Shows the notes that were remembered. The caller has the lock.
void KeyboardRoute::catchUp() {
    if (!hasMissed_.exchange(false)) return;
    for (int key = 0; key < 128; ++key) {
        const std::uint32_t missed = missed_[static_cast<std::size_t>(key)].exchange(0);
        for (int channel = 1; missed != 0 && channel <= 16; ++channel) {
            if (((missed >> (channel - 1)) & 1) == 0) continue;
            const bool isOn = ((missed >> (channel + 15)) & 1) != 0;
            show(isOn ? juce::MidiMessage::noteOn(channel, key, 1.0f) : juce::MidiMessage::noteOff(channel, key));
        }
    }
}

void KeyboardRoute::leave() {
    do {
        catchUp();
        lock_.exit();
    } while (hasMissed_ && lock_.tryEnter());
}

void KeyboardRoute::handleNoteOn(juce::MidiKeyboardState*, int channel, int key, float velocity) {
    if (isShowing_) return;
    engine_.postEvent(midi::noteOn, channel - 1, key, juce::roundToInt(velocity * 127.0f), immediateOffset);
}

void KeyboardRoute::handleNoteOff(juce::MidiKeyboardState*, int channel, int key, float) {
    if (isShowing_) return;
    engine_.postEvent(midi::noteOff, channel - 1, key, 0, immediateOffset);
}

} // namespace zarno
