// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/LevelMeter.h"

#include "gui/Theme.h"

#include <cmath>

namespace zarno {

LevelMeter::LevelMeter() {
    setTitle("Level");
    setTooltip("Output level. The mark at the right shows clipping; a click clears it.");
}

float LevelMeter::fractionFor(float peak) {
    constexpr float range = 60.0f;
    return peak > 0.0f ? juce::jlimit(0.0f, 1.0f, 1.0f + 20.0f * std::log10(peak) / range) : 0.0f;
}

void LevelMeter::show(float peak) {
    const float fraction = fractionFor(peak);
    const bool isClipped = isClipped_ || peak >= 1.0f;
    const int pixels = getWidth();
    if (isClipped == isClipped_ && juce::roundToInt(fraction * static_cast<float>(pixels)) ==
                                       juce::roundToInt(shown_ * static_cast<float>(pixels)))
        return;
    shown_ = fraction;
    isClipped_ = isClipped;
    repaint();
}

void LevelMeter::mouseDown(const juce::MouseEvent&) {
    isClipped_ = false;
    repaint();
}

void LevelMeter::paint(juce::Graphics& g) {
    auto area = getLocalBounds().toFloat().withSizeKeepingCentre(static_cast<float>(getWidth()), 10.0f);
    const auto mark = area.removeFromRight(6.0f);
    area.removeFromRight(2.0f);
    g.setColour(juce::Colour(theme::outline));
    g.drawRoundedRectangle(area.reduced(0.5f), 2.0f, 1.0f);
    g.drawRoundedRectangle(mark.reduced(0.5f), 2.0f, 1.0f);
    area.reduce(1.5f, 1.5f);
    g.setColour(juce::Colour(theme::good));
    g.fillRect(area.withWidth(area.getWidth() * shown_));
    if (!isClipped_) return;
    g.setColour(juce::Colour(theme::warning));
    g.fillRoundedRectangle(mark, 2.0f);
}

} // namespace zarno
