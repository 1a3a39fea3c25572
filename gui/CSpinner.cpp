// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CSpinner.h"

#include "gui/Theme.h"

namespace zarno {

void CSpinner::ProgressPetal::setLevel(float level) {
    if (level == level_) return;
    level_ = level;
    repaint();
}

void CSpinner::ProgressPetal::paint(juce::Graphics& g) {
    const auto area = getLocalBounds().toFloat().reduced(1.0f);
    g.setColour(juce::Colour(theme::outline).interpolatedWith(juce::Colour(theme::accent), level_));
    g.fillEllipse(area);
}

CSpinner::CSpinner() {
    for (float turn = 0.0f; turn <= 1.0f; turn += 0.0833f)
        angles_.push_back(turn);
    setInterceptsMouseClicks(false, false);
    setAccessible(false);
}

void CSpinner::setRound(bool isRound) {
    isRound_ = isRound;
    resized();
    repaint();
}

void CSpinner::resized() {
    const auto width = static_cast<float>(getWidth()), height = static_cast<float>(getHeight());
    const float petalWidth = width / 11.0f, petalHeight = height / 3.8f;
    const float x = width * 0.5f - petalWidth * 0.5f, y = height - petalHeight;
    petal_.clear();
    if (isRound_) {
        const float size = width * 0.02f + petalWidth;
        petal_.addEllipse(x, y + petalHeight * 0.5f, size, size);
    } else {
        petal_.addRoundedRectangle(x, y, petalWidth, petalHeight, petalWidth * 0.5f);
    }
    pivot_ = {x + petalWidth * 0.5f, y - petalHeight / 1.1f};
}

void CSpinner::paint(juce::Graphics& g) {
    for (int i = 0; i < drawnPetals; ++i) {
        const int age = (brightest_ - i + drawnPetals) % drawnPetals;
        const float light = 1.0f - static_cast<float>(age) / drawnPetals;
        g.setColour(juce::Colours::white.withAlpha(0.12f + 0.88f * light * light));
        const float angle = angles_[static_cast<std::size_t>(i)] * 6.2831855f;
        g.fillPath(petal_, juce::AffineTransform::rotation(angle, pivot_.x, pivot_.y));
    }
}

void CSpinner::visibilityChanged() {
    if (isVisible())
        startTimer(tickMs);
    else
        stopTimer();
}

void CSpinner::timerCallback() {
    brightest_ = (brightest_ + 1) % drawnPetals;
    repaint();
}

} // namespace zarno
