// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CPlayerKeyboard.h"

#include "gui/Theme.h"
#include "shell/KeyboardRoute.h"

#include <optional>

namespace zarno {

template <typename Change>
auto CPlayerKeyboard::whileHeld(Change&& change) {
    std::optional<KeyboardRoute::Hold> hold;
    if (route_ != nullptr) hold.emplace(*route_);
    return change();
}

CPlayerKeyboard::CPlayerKeyboard(juce::MidiKeyboardState& state, KeyboardRoute* route)
    : MidiKeyboardComponent(state, horizontalKeyboard)
    , route_(route) {
    roles_.fill(KeyRole::Playable);
    setScrollButtonsVisible(false);
    setColour(whiteNoteColourId, juce::Colour(theme::whiteKey));
    setColour(blackNoteColourId, juce::Colour(theme::blackKey));
    setColour(keyDownOverlayColourId, juce::Colour(theme::accent));
    setColour(mouseOverKeyOverlayColourId, juce::Colour(theme::accent).withAlpha(0.35f));
    setColour(keySeparatorLineColourId, juce::Colour(0xff8d8b87));
    setColour(shadowColourId, juce::Colours::black.withAlpha(0.45f));
    setTitle("Keyboard");
    setOctaveForMiddleC(4);
    setOctave(5);
}

CPlayerKeyboard::~CPlayerKeyboard() {
    releaseKeys();
}

void CPlayerKeyboard::setShowsNames(bool showsNames) {
    showsNames_ = showsNames;
    repaint();
}

void CPlayerKeyboard::setRoles(const KeyRoles& roles) {
    if (roles == roles_) return;
    roles_ = roles;
    int lowest = 128, highest = -1;
    for (int key = 0; key < 128; ++key)
        if (roleOf(key) == KeyRole::Playable) {
            lowest = std::min(lowest, key);
            highest = key;
        }
    // Seventeen keys from C on are played by the computer's.
    const int middle = (lowest + highest) / 2;
    if (highest >= 0 && std::exchange(middle_, middle) != middle) setOctave((middle - 2) / 12);
    repaint();
}

void CPlayerKeyboard::setOctave(int octave) {
    releaseKeys();
    octave_ = juce::jlimit(0, 10, octave);
    setKeyPressBaseOctave(octave_);
    setTooltip("Computer keys: A W S E D F T G Y H U J K play from " +
               juce::MidiMessage::getMidiNoteName(octave_ * 12, true, true, 4) +
               "; Z and X move them an octave down and up.");
}

void CPlayerKeyboard::paintOverChildren(juce::Graphics& g) {
    if (!hasKeyboardFocus(true)) return;
    g.setColour(juce::Colour(theme::accent));
    g.drawRect(getLocalBounds(), 2);
}

void CPlayerKeyboard::releaseKeys() {
    focusLost(focusChangedDirectly);
}

// The whole range fills the width.
void CPlayerKeyboard::resized() {
    int whiteKeys = 0;
    for (int note = getRangeStart(); note <= getRangeEnd(); ++note)
        whiteKeys += juce::MidiMessage::isMidiNoteBlack(note) ? 0 : 1;
    setKeyWidth(static_cast<float>(getWidth()) / static_cast<float>(std::max(1, whiteKeys)));
    setLowestVisibleKey(getRangeStart());
    MidiKeyboardComponent::resized();
}

void CPlayerKeyboard::mouseDown(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseDown(event); });
}
void CPlayerKeyboard::mouseDrag(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseDrag(event); });
}
void CPlayerKeyboard::mouseUp(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseUp(event); });
}
void CPlayerKeyboard::mouseMove(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseMove(event); });
}
void CPlayerKeyboard::mouseEnter(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseEnter(event); });
}
void CPlayerKeyboard::mouseExit(const juce::MouseEvent& event) {
    whileHeld([&] { MidiKeyboardComponent::mouseExit(event); });
}
bool CPlayerKeyboard::keyStateChanged(bool isKeyDown) {
    return whileHeld([&] { return MidiKeyboardComponent::keyStateChanged(isKeyDown); });
}
void CPlayerKeyboard::focusLost(FocusChangeType cause) {
    whileHeld([&] { MidiKeyboardComponent::focusLost(cause); });
    repaint();
}

juce::Colour CPlayerKeyboard::keyColour(int note, juce::Colour plain, bool isDown, bool isOver) const {
    const juce::Colour accent(theme::accent);
    auto colour = plain;
    switch (roleOf(note)) {
    case KeyRole::Playable:
        break;
    case KeyRole::Silent:
        colour = plain.interpolatedWith(juce::Colour(0xff5d6068), 0.62f);
        break;
    case KeyRole::Keyswitch:
        colour = plain.interpolatedWith(juce::Colour(0xff5c86b8), 0.55f);
        break;
    case KeyRole::ActiveKeyswitch:
        colour = plain.interpolatedWith(juce::Colour(0xff2f7fd6), 0.9f);
        break;
    }
    if (isDown) return colour.interpolatedWith(accent, 0.85f);
    return isOver ? colour.overlaidWith(findColour(mouseOverKeyOverlayColourId)) : colour;
}

void CPlayerKeyboard::drawWhiteNote(int note, juce::Graphics& g, juce::Rectangle<float> area, bool isDown,
                                    bool isOver, juce::Colour line, juce::Colour text) {
    const auto colour = keyColour(note, findColour(whiteNoteColourId), isDown, isOver);
    g.setGradientFill({colour.darker(0.12f), 0.0f, area.getY(), colour, 0.0f,
                       area.getY() + area.getHeight() * 0.6f, false});
    g.fillRect(area);
    g.setColour(colour.darker(isDown ? 0.1f : 0.35f));
    g.fillRect(area.withTop(area.getBottom() - (isDown ? 1.0f : 3.0f)));
    g.setColour(line);
    g.fillRect(area.withWidth(std::min(1.0f, area.getWidth() / 6.0f)));
    const auto name = getWhiteNoteText(note);
    if (name.isEmpty()) return;
    g.setColour(text.withMultipliedAlpha(0.7f));
    g.setFont(juce::Font(std::clamp(getKeyWidth() * 0.62f, 6.0f, 11.0f)));
    g.drawText(name, area.withTrimmedBottom(4.0f).expanded(2.0f, 0.0f), juce::Justification::centredBottom,
               false);
}

void CPlayerKeyboard::drawBlackNote(int note, juce::Graphics& g, juce::Rectangle<float> area, bool isDown,
                                    bool isOver, juce::Colour fill) {
    const auto colour = keyColour(note, fill, isDown, isOver);
    const float corner = std::min(2.0f, area.getWidth() / 4.0f);
    g.setColour(juce::Colours::black.withAlpha(0.35f));
    g.fillRoundedRectangle(area.withTrimmedTop(-corner).expanded(0.6f, 0.0f).withTrimmedBottom(-0.8f),
                           corner);
    g.setColour(colour.darker(0.4f));
    g.fillRoundedRectangle(area.withTrimmedTop(-corner), corner);
    const auto face = area.reduced(area.getWidth() * 0.13f, 0.0f)
                          .withTrimmedTop(-corner)
                          .withTrimmedBottom(area.getHeight() * (isDown ? 0.06f : 0.14f));
    g.setGradientFill(
        {colour.brighter(0.10f), 0.0f, face.getY(), colour.brighter(0.32f), 0.0f, face.getBottom(), false});
    g.fillRoundedRectangle(face, corner);
}

juce::String CPlayerKeyboard::getWhiteNoteText(int note) {
    return showsNames_ ? MidiKeyboardComponent::getWhiteNoteText(note) : juce::String();
}

} // namespace zarno
