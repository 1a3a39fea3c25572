// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_utils/juce_audio_utils.h>

#include <array>
#include <cstdint>

namespace zarno {

class KeyboardRoute;

// What a key is for: nothing sounds there, it plays, it switches groups, or it is the switch that is on.
enum class KeyRole : std::uint8_t { Silent, Playable, Keyswitch, ActiveKeyswitch };
using KeyRoles = std::array<KeyRole, 128>;

// The keyboard of the panel: mouse and computer keys play, the keys that sound are lit, and colours tell what
// each key is for. Lets its notes go when it is deleted.
class CPlayerKeyboard final : public juce::MidiKeyboardComponent, public juce::SettableTooltipClient {
  public:
    // The route through which the state's changes reach the engine; held while this changes the state. May be
    // null.
    CPlayerKeyboard(juce::MidiKeyboardState& state, KeyboardRoute* route);
    ~CPlayerKeyboard() override;

    // The display flag: names on the C keys.
    void setShowsNames(bool showsNames);
    bool showsNames() const { return showsNames_; }

    // Computer keys start in the middle of the keys that play.
    void setRoles(const KeyRoles& roles);
    // The octave of the computer keys: 0 begins at MIDI 0. Lets held keys go.
    void setOctave(int octave);
    int octave() const { return octave_; }

    // All notes that mouse and computer keys hold.
    void releaseKeys();

    void resized() override;
    void mouseDown(const juce::MouseEvent&) override;
    void mouseDrag(const juce::MouseEvent&) override;
    void mouseUp(const juce::MouseEvent&) override;
    void mouseMove(const juce::MouseEvent&) override;
    void mouseEnter(const juce::MouseEvent&) override;
    void mouseExit(const juce::MouseEvent&) override;
    bool keyStateChanged(bool isKeyDown) override;
    void focusGained(FocusChangeType) override { repaint(); }
    void focusLost(FocusChangeType) override;
    void paintOverChildren(juce::Graphics&) override;

  private:
    void drawWhiteNote(int note, juce::Graphics&, juce::Rectangle<float> area, bool isDown, bool isOver,
                       juce::Colour line, juce::Colour text) override;
    void drawBlackNote(int note, juce::Graphics&, juce::Rectangle<float> area, bool isDown, bool isOver,
                       juce::Colour fill) override;
    juce::String getWhiteNoteText(int note) override;
    juce::Colour keyColour(int note, juce::Colour plain, bool isDown, bool isOver) const;
    KeyRole roleOf(int note) const { return roles_[static_cast<std::size_t>(note & 127)]; }

    template <typename Change>
    auto whileHeld(Change&& change);

    KeyboardRoute* route_;
    KeyRoles roles_;
    bool showsNames_ = false;
    int octave_ = 0;
    int middle_ = -1; // of the keys that play
};

} // namespace zarno
