// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace zarno {

// The appearance of the window. Processors own one each; the framework has one default for the whole module.
// Message thread.
class CLookAndFeel final : public juce::LookAndFeel_V4 {
  public:
    CLookAndFeel();
    // Hands the place as default to another one that is alive.
    ~CLookAndFeel() override;

    // Makes this one the framework's default.
    void install();

    void drawRotarySlider(juce::Graphics&, int x, int y, int width, int height, float position,
                          float startAngle, float endAngle, juce::Slider&) override;
    void drawButtonBackground(juce::Graphics&, juce::Button&, const juce::Colour&, bool isOver,
                              bool isDown) override;
    void drawProgressBar(juce::Graphics&, juce::ProgressBar&, int width, int height, double progress,
                         const juce::String& text) override;
    void drawPopupMenuSectionHeader(juce::Graphics&, const juce::Rectangle<int>& area,
                                    const juce::String& text) override;
    void drawFileBrowserRow(juce::Graphics&, int width, int height, const juce::File&,
                            const juce::String& name, juce::Image* icon, const juce::String& size,
                            const juce::String& time, bool isFolder, bool isSelected, int row,
                            juce::DirectoryContentsDisplayComponent&) override;
    void drawComboBox(juce::Graphics&, int width, int height, bool isDown, int buttonX, int buttonY,
                      int buttonWidth, int buttonHeight, juce::ComboBox&) override;
    juce::Font getTextButtonFont(juce::TextButton&, int height) override;
    juce::Font getComboBoxFont(juce::ComboBox&) override;
    juce::Font getPopupMenuFont() override;
    juce::Typeface::Ptr getTypefaceForFont(const juce::Font&) override;
};

} // namespace zarno
