// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// What the window says to files that are dragged over it: the instrument that it will load, or why none.
struct DropOffer {
    juce::String path; // of the first instrument; empty: nothing will be loaded
    juce::String text; // for the user
    bool isTaken() const { return path.isNotEmpty(); }
};
DropOffer offerFor(const juce::StringArray& files);

bool isInstrumentFile(const juce::String& path);

// Covers the window while files are dragged over it. Message thread.
class DropHighlight final : public juce::Component {
  public:
    DropHighlight() { setInterceptsMouseClicks(false, false); }
    void show(const DropOffer& offer);
    const juce::String& text() const { return offer_.text; }
    void paint(juce::Graphics&) override;

  private:
    DropOffer offer_;
};

} // namespace zarno
