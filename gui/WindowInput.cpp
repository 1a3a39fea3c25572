// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/WindowInput.h"

#include "gui/CPlayerGUI.h"
#include "gui/CPlayerKeyboard.h"

#include <cmath>

namespace zarno {

WindowInput::WindowInput(juce::Component& window, CPlayerGUI& panel, Actions actions)
    : window_(window)
    , panel_(panel)
    , actions_(std::move(actions)) {
    window_.addMouseListener(this, true); // over any control
}

WindowInput::~WindowInput() {
    window_.removeMouseListener(this);
}

bool WindowInput::keyPressed(const juce::KeyPress& key) {
    const auto& keyboards = panel_.controls().keyboards;
    if (key.getModifiers().isCommandDown() || key.getModifiers().isCtrlDown()) {
        const int code = key.getKeyCode();
        const bool isLarger = code == '+' || code == '=' || code == juce::KeyPress::numberPadAdd;
        const bool isSmaller = code == '-' || code == juce::KeyPress::numberPadSubtract;
        if (!isLarger && !isSmaller && code != '0' && code != juce::KeyPress::numberPad0) return false;
        actions_.zoomBy(isLarger ? 1 : isSmaller ? -1 : 0);
        return true;
    }
    const auto character = juce::CharacterFunctions::toLowerCase(key.getTextCharacter());
    const int octaves = character == 'x' ? 1 : character == 'z' ? -1 : 0;
    if (octaves == 0 || keyboards.empty() || actions_.isCovered()) return false;
    keyboards.front()->setOctave(keyboards.front()->octave() + octaves);
    return true;
}

bool WindowInput::keyStateChanged(bool isKeyDown) {
    const auto& keyboards = panel_.controls().keyboards;
    return !keyboards.empty() && !actions_.isCovered() && keyboards.front()->keyStateChanged(isKeyDown);
}

// A notch of a wheel is a step; touchpads send many small moves.
void WindowInput::mouseWheelMove(const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) {
    constexpr float notch = 0.2f;
    if (!event.mods.isCtrlDown() && !event.mods.isCommandDown()) return;
    wheelTravel_ += wheel.isReversed ? -wheel.deltaY : wheel.deltaY;
    if (std::abs(wheelTravel_) < notch) return;
    actions_.zoomBy(wheelTravel_ > 0.0f ? 1 : -1);
    wheelTravel_ = 0.0f;
}

// JUCE gives it to the component that fills the system's window, which in a host is not ours.
void WindowInput::takeFocus() {
    constexpr int pause = 8; // calls: the peer asks the system
    const auto* peer = window_.getPeer();
    if (++calls_ % pause != 0 || peer == nullptr || window_.hasKeyboardFocus(true) || !peer->isFocused()) return;
    const auto* focused = juce::Component::getCurrentlyFocusedComponent();
    if (focused == nullptr || focused->isParentOf(&window_)) window_.grabKeyboardFocus();
}

} // namespace zarno
