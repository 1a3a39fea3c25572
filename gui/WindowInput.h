// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace zarno {

class CPlayerGUI;

// Keys and the wheel of the whole window: the computer's keys play the panel's first keyboard wherever the focus is,
// Z and X move them by an octave, Ctrl with 0, +, - and the wheel zooms. Message thread.
class WindowInput final : public juce::MouseListener {
  public:
    struct Actions {
        std::function<bool()> isCovered;           // something lies over the panel: no key plays
        std::function<void(int direction)> zoomBy; // 0: back to 100 %
    };
    WindowInput(juce::Component& window, CPlayerGUI& panel, Actions actions);
    ~WindowInput() override;

    bool keyPressed(const juce::KeyPress&);
    bool keyStateChanged(bool isKeyDown);
    // Many times a second: takes the focus that the system has given to the window.
    void takeFocus();

  private:
    void mouseWheelMove(const juce::MouseEvent&, const juce::MouseWheelDetails&) override;

    juce::Component& window_;
    CPlayerGUI& panel_;
    Actions actions_;
    float wheelTravel_ = 0.0f; // with Ctrl, since the last step
    unsigned calls_ = 0;       // of takeFocus
};

} // namespace zarno
