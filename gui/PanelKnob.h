// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

class PanelKnob;

// What a knob cannot do alone. Message thread.
class KnobOwner {
  public:
    virtual ~KnobOwner() = default;
    // Back to the value in the instrument's file.
    virtual void resetKnob(PanelKnob&) = 0;
    virtual void showKnobMenu(PanelKnob&) = 0;
    virtual void typeKnobValue(PanelKnob&) = 0;
};

// A rotary slider from 0 to 1 that follows vertical drags: the whole range in `coarsePixels`, with Shift or Ctrl
// in `finePixels`. Double click resets, right click and the menu key open a menu, Return asks for a value.
class PanelKnob : public juce::Slider {
  public:
    static constexpr double coarsePixels = 250.0, finePixels = 2500.0;

    PanelKnob();
    // May be null: then reset, menu and typing do nothing.
    void setOwner(KnobOwner* owner) { owner_ = owner; }

    void mouseDown(const juce::MouseEvent&) override;
    void mouseDrag(const juce::MouseEvent&) override;
    void mouseUp(const juce::MouseEvent&) override;
    void mouseDoubleClick(const juce::MouseEvent&) override;
    void mouseWheelMove(const juce::MouseEvent&, const juce::MouseWheelDetails&) override;
    bool keyPressed(const juce::KeyPress&) override;
    bool keyStateChanged(bool isKeyDown) override;
    void focusGained(FocusChangeType) override { repaint(); }
    void focusLost(FocusChangeType) override { repaint(); }

  private:
    KnobOwner* owner_ = nullptr;
    bool isDragged_ = false;
    double position_ = 0.0; // of the drag, beyond what the slider rounds to
    float lastY_ = 0.0f;
};

} // namespace zarno
