// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/ValueBubble.h"

#include "gui/Theme.h"

#include <algorithm>

namespace zarno {
namespace {

constexpr int height = 18, fieldWidth = 74;
constexpr int shownMs = 1200;

juce::Font bubbleFont() {
    return juce::Font(12.0f);
}

} // namespace

juce::Rectangle<int> bubblePlace(juce::Rectangle<int> knob, juce::Point<int> size,
                                 const std::vector<juce::Rectangle<int>>& occupied, juce::Rectangle<int> area) {
    constexpr int gap = 2, step = 4;
    const juce::Rectangle<int> bubble(size.x, size.y);
    const auto isFree = [&](juce::Rectangle<int> place) {
        return area.contains(place) && !place.intersects(knob) &&
               std::none_of(occupied.begin(), occupied.end(),
                            [&](const auto& other) { return other != knob && other.intersects(place); });
    };
    const auto into = [&](juce::Rectangle<int> place) { return place.constrainedWithin(area); };
    const auto above = into(bubble.withCentre(knob.getCentre()).withBottomY(knob.getY() - gap));
    for (const auto& place : {above, into(bubble.withCentre(knob.getCentre()).withY(knob.getBottom() + gap)),
                              bubble.withCentre(knob.getCentre()).withX(knob.getRight() + gap),
                              bubble.withCentre(knob.getCentre()).withRightX(knob.getX() - gap)})
        if (isFree(place)) return place;

    auto best = above;
    int bestDistance = std::numeric_limits<int>::max();
    for (int y = area.getY(); y + size.y <= area.getBottom(); y += step)
        for (int x = area.getX(); x + size.x <= area.getRight(); x += step) {
            const auto place = bubble.withPosition(x, y);
            const int distance = place.getCentre().getDistanceSquaredFrom(knob.getCentre());
            if (distance < bestDistance && isFree(place)) {
                best = place;
                bestDistance = distance;
            }
        }
    return best;
}

ValueBubble::ValueBubble() {
    setInterceptsMouseClicks(false, true);
    setAccessible(false); // the knob itself says its value
    field_.setFont(bubbleFont());
    field_.setBorder({});
    field_.setIndents(4, 1);
    field_.setTitle("Value");
    field_.onReturnKey = [this] {
        const auto done = std::exchange(done_, nullptr);
        const auto typed = field_.getText();
        hide();
        if (done) done(typed);
    };
    field_.onEscapeKey = field_.onFocusLost = [this] { hide(); };
    addChildComponent(field_);
}

void ValueBubble::show(const juce::String& text, juce::Rectangle<int> knob,
                       const std::vector<juce::Rectangle<int>>& occupied) {
    field_.setVisible(false);
    done_ = nullptr;
    text_ = text;
    place(bubbleFont().getStringWidth(text) + 14, knob, occupied);
    startTimer(shownMs);
}

void ValueBubble::ask(const juce::String& value, juce::Rectangle<int> knob,
                      const std::vector<juce::Rectangle<int>>& occupied, Done done) {
    stopTimer();
    text_.clear();
    place(fieldWidth, knob, occupied);
    done_ = std::move(done);
    field_.setText(value, false);
    field_.setVisible(true);
    if (isShowing()) field_.grabKeyboardFocus();
    field_.selectAll();
}

void ValueBubble::place(int width, juce::Rectangle<int> knob,
                        const std::vector<juce::Rectangle<int>>& occupied) {
    if (getParentComponent() == nullptr) return;
    setBounds(bubblePlace(knob, {width, height}, occupied, getParentComponent()->getLocalBounds()));
    setVisible(true);
    toFront(false);
    repaint();
}

void ValueBubble::hide() {
    stopTimer();
    done_ = nullptr;
    text_.clear();
    setVisible(false);
}

void ValueBubble::timerCallback() {
    hide();
}

void ValueBubble::paint(juce::Graphics& g) {
    const auto area = getLocalBounds().toFloat();
    g.setColour(juce::Colour(theme::bubble));
    g.fillRoundedRectangle(area, 4.0f);
    g.setColour(juce::Colour(theme::outline));
    g.drawRoundedRectangle(area.reduced(0.5f), 4.0f, 1.0f);
    g.setColour(juce::Colour(theme::text));
    g.setFont(bubbleFont());
    g.drawText(text_, getLocalBounds(), juce::Justification::centred, false);
}

void ValueBubble::resized() {
    field_.setBounds(getLocalBounds().reduced(1));
}

} // namespace zarno
