// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// Makes sure that what a window shows reaches the screen, where JUCE 7 alone does not. Message thread.
//
// A screen without vertical blanks (Wine, remote sessions): JUCE paints at the blank, so windows would be painted
// once and never again.
//
// A window that has another size: JUCE asks for the paint while the system's window still has the old size and cuts
// the request to it; what the system reports afterwards may be cut to a size that is out of date. So the whole window
// is painted again for a while after each change.
class Repainter {
  public:
    explicit Repainter(juce::Component& window)
        : window_(window)
        , blanks_(&window, [this] { lastBlank_ = juce::Time::getMillisecondCounter(); }) {}

    void repaintForAWhile() { changedAt_ = juce::Time::getMillisecondCounter(); }

    // Paints what waits. To be called many times a second, last of all: messages may come in meanwhile that close
    // the window.
    void paintWhatWaits();

  private:
    juce::Component& window_;
    juce::Rectangle<int> seenBounds_; // of the system's window
    juce::uint32 lastBlank_ = 0, changedAt_ = 0;
    juce::VBlankAttachment blanks_;
};

} // namespace zarno
