// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/PanelKnob.h"

namespace zarno {
namespace {

bool isFine(const juce::ModifierKeys& keys) {
    return keys.isShiftDown() || keys.isCtrlDown() || keys.isCommandDown();
}

// JUCE gives no key press for it, only its state.
bool isMenuKeyDown() {
#if JUCE_WINDOWS
    return juce::KeyPress::isKeyCurrentlyDown(0x5D); // VK_APPS
#else
    return juce::KeyPress::isKeyCurrentlyDown(0x10000000 | 0x67); // XK_Menu as JUCE writes function keys
#endif
}

} // namespace

PanelKnob::PanelKnob()
    : Slider(RotaryVerticalDrag, NoTextBox) {
    setRange(0.0, 1.0, 0.0);
    setWantsKeyboardFocus(true);
}

void PanelKnob::mouseDown(const juce::MouseEvent& event) {
    isDragged_ = false;
    if (event.mods.isPopupMenu()) {
        if (owner_ != nullptr) owner_->showKnobMenu(*this);
        return;
    }
    isDragged_ = true;
    position_ = getValue();
    lastY_ = event.position.y;
    Slider::mouseDown(event);
}

void PanelKnob::mouseDrag(const juce::MouseEvent& event) {
    if (!isDragged_) return;
    const double moved = lastY_ - event.position.y;
    lastY_ = event.position.y;
    position_ = juce::jlimit(0.0, 1.0, position_ + moved / (isFine(event.mods) ? finePixels : coarsePixels));
    setValue(position_, juce::sendNotificationSync);
}

void PanelKnob::mouseUp(const juce::MouseEvent& event) {
    if (std::exchange(isDragged_, false)) Slider::mouseUp(event);
}

void PanelKnob::mouseDoubleClick(const juce::MouseEvent& event) {
    if (owner_ != nullptr && !event.mods.isPopupMenu()) owner_->resetKnob(*this);
}

// With Ctrl the wheel zooms the window.
void PanelKnob::mouseWheelMove(const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) {
    if (event.mods.isCtrlDown() || event.mods.isCommandDown() || wheel.deltaY == 0.0f) return;
    const double step = event.mods.isShiftDown() ? 0.02 : 0.2; // of the range for one unit of the wheel
    setValue(getValue() + static_cast<double>(wheel.isReversed ? -wheel.deltaY : wheel.deltaY) * step,
             juce::sendNotificationSync);
}

bool PanelKnob::keyPressed(const juce::KeyPress& key) {
    using juce::KeyPress;
    const bool isShifted = key.getModifiers().isShiftDown();
    if (owner_ != nullptr && key.isKeyCode(KeyPress::F10Key) && isShifted) {
        owner_->showKnobMenu(*this);
        return true;
    }
    if (owner_ != nullptr && key.isKeyCode(KeyPress::returnKey)) {
        owner_->typeKnobValue(*this);
        return true;
    }
    if (key.getModifiers().isCtrlDown() || key.getModifiers().isCommandDown()) return false;
    const bool isUp = key.isKeyCode(KeyPress::upKey) || key.isKeyCode(KeyPress::rightKey);
    const bool isDown = key.isKeyCode(KeyPress::downKey) || key.isKeyCode(KeyPress::leftKey);
    if (!isUp && !isDown) return false;
    setValue(getValue() + (isUp ? 1.0 : -1.0) * (isShifted ? 0.001 : 0.01), juce::sendNotificationSync);
    return true;
}

bool PanelKnob::keyStateChanged(bool isKeyDown) {
    if (!isKeyDown || owner_ == nullptr || !isMenuKeyDown()) return false;
    owner_->showKnobMenu(*this);
    return true;
}

} // namespace zarno
