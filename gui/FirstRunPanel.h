// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace zarno {

// What a window shows that has nothing to play: where instruments belong, and how to get one. Message thread.
class FirstRunPanel final : public juce::Component {
  public:
    FirstRunPanel();
    std::function<void()> onOpenFolder, onLoad;

    void setFolder(const juce::String& path);

    void paint(juce::Graphics&) override;
    void resized() override;

  private:
    juce::Label title_, folder_, hint_;
    juce::TextButton openFolder_{"Open folder"}, load_;
};

} // namespace zarno
