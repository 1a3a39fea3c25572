// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// The framework paints at the screen's vertical blank. Where the screen has none (Wine, remote sessions),
// windows would be painted once and never again; this does it then. Message thread.
class Repainter {
  public:
    explicit Repainter(juce::Component& window)
        : blanks_(&window, [this] { lastBlank_ = juce::Time::getMillisecondCounter(); }) {}

    // Paints what waits in any window of the module, unless the screen does so. To be called many times a
    // second, last of all: messages may come in meanwhile that close the window.
    void paintWhatWaits() const;

  private:
    juce::uint32 lastBlank_ = 0;
    juce::VBlankAttachment blanks_;
};

} // namespace zarno
