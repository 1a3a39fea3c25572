// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/SystemDesktop.h"
#include "shell/EditorLink.h"

namespace zarno {

// How large the window is drawn: the zoom that the user has chosen, kept for all windows, as far as the display has
// room, times the scale of the desktop. Message thread.
class WindowZoom {
  public:
    explicit WindowZoom(EditorLink& link);

    // Of the chosen zoom, in percent; one of zoomPercents.
    int chosen() const { return chosen_; }
    void choose(int percent);
    // The next larger (1) or smaller (-1) one than that in force, or 100 (0).
    int stepped(int direction) const;

    // The window's content is `width` x `height` at 100 %. Call it after the window has moved or its content has
    // another size.
    void fit(const juce::Component& window, int width, int height);
    // The zoom in force, and the largest for which there is room.
    int percent() const { return std::min(chosen_, largest_); }
    int largest() const { return largest_; }
    const SystemDesktop& desktop() const { return system_; }
    // From content to JUCE's coordinates.
    float scale() const { return static_cast<float>(percent()) / 100.0f * desktop_; }

  private:
    EditorLink& link_;
    SystemDesktop system_;
    int chosen_ = 100, largest_ = 300;
    float desktop_ = 1.0f; // beyond what JUCE does by itself
};

} // namespace zarno
