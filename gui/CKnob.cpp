// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CKnob.h"

#include "gui/Theme.h"

namespace zarno {

void CKnob::setImage(const juce::Image& strip) {
    strip_ = strip;
    const int width = strip.getWidth(), height = strip.getHeight();
    isHorizontal_ = width > height;
    frameSize_ = std::min(width, height);
    frames_ = frameSize_ > 0 ? std::max(width, height) / frameSize_ : 0;
    setSize(frameSize_, frameSize_);
    repaint();
}

void CKnob::setFramesOfOwnSize(bool ownSize) {
    ownSize_ = ownSize;
    repaint();
}

int CKnob::frameCount() const {
    if (!ownSize_) return frames_;
    return getWidth() > 0 ? strip_.getWidth() / getWidth() : 0;
}

int CKnob::frameAt(double value, double maximum, int frameCount) {
    const int frame = static_cast<int>(value / (maximum / frameCount));
    return frame > 0 ? frame - 1 : frame;
}

juce::Rectangle<int> CKnob::frameArea(int frame) const {
    if (ownSize_) return getLocalBounds().withX(getWidth() * frame);
    return {isHorizontal_ ? frameSize_ * frame : 0, isHorizontal_ ? 0 : frameSize_ * frame, frameSize_,
            frameSize_};
}

void CKnob::paint(juce::Graphics& g) {
    const int frames = frameCount();
    if (!strip_.isValid() || frames < 1) {
        g.fillAll(juce::Colours::darkgrey);
    } else {
        const auto source = frameArea(frameAt(getValue(), getMaximum(), frames));
        g.drawImage(strip_, 0, 0, source.getWidth(), source.getHeight(), source.getX(), source.getY(),
                    source.getWidth(), source.getHeight());
    }
    if (hasKeyboardFocus(true)) {
        g.setColour(juce::Colour(theme::accent).withAlpha(0.8f));
        g.drawRoundedRectangle(getLocalBounds().toFloat().reduced(0.5f), 3.0f, 1.0f);
    }
}

} // namespace zarno
