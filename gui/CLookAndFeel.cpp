// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CLookAndFeel.h"

#include "gui/Theme.h"
#include "gui/Typefaces.h"

#include <algorithm>
#include <vector>

namespace zarno {
namespace {

using juce::Colour;

std::vector<CLookAndFeel*>& living() {
    static std::vector<CLookAndFeel*> all;
    return all;
}

juce::LookAndFeel_V4::ColourScheme colourScheme() {
    return {Colour(theme::body),    Colour(theme::raised), Colour(theme::raised),
            Colour(theme::outline), Colour(theme::text),   Colour(theme::raised),
            Colour(theme::body),    Colour(theme::accent), Colour(theme::text)};
}

juce::Path arc(juce::Point<float> middle, float radius, float from, float to) {
    juce::Path path;
    path.addCentredArc(middle.x, middle.y, radius, radius, 0.0f, from, to, true);
    return path;
}

void drawCap(juce::Graphics& g, juce::Point<float> middle, float radius, bool isOver) {
    const auto circle = juce::Rectangle<float>(2 * radius, 2 * radius).withCentre(middle);
    g.setColour(juce::Colours::black.withAlpha(0.35f));
    g.fillEllipse(circle.translated(0.0f, radius * 0.12f).expanded(radius * 0.05f));
    g.setGradientFill({Colour(isOver ? 0xff656b77 : 0xff5a606b), middle.x, circle.getY(), Colour(0xff2a2d33),
                       middle.x, circle.getBottom(), false});
    g.fillEllipse(circle);
    g.setGradientFill({Colour(0xff40454e), middle.x, circle.getY(), Colour(0xff343840), middle.x,
                       circle.getBottom(), false});
    g.fillEllipse(circle.reduced(radius * 0.11f));
}

} // namespace

CLookAndFeel::CLookAndFeel()
    : LookAndFeel_V4(colourScheme()) {
    chooseTypefaces(*this);
    setColour(juce::TextButton::buttonColourId, Colour(theme::raised));
    setColour(juce::TextButton::buttonOnColourId, Colour(theme::accent));
    setColour(juce::TextButton::textColourOnId, Colour(theme::accentText));
    setColour(juce::TextEditor::backgroundColourId, Colour(theme::field));
    setColour(juce::TextEditor::textColourId, Colour(theme::text));
    setColour(juce::TextEditor::outlineColourId, Colour(theme::outline));
    setColour(juce::TextEditor::focusedOutlineColourId, Colour(theme::accent));
    setColour(juce::TextEditor::highlightColourId, Colour(theme::accent));
    setColour(juce::TextEditor::highlightedTextColourId, Colour(theme::accentText));
    setColour(juce::CaretComponent::caretColourId, Colour(theme::accent));
    setColour(juce::PopupMenu::textColourId, Colour(theme::text));
    setColour(juce::TooltipWindow::textColourId, Colour(theme::text));
    setColour(juce::TooltipWindow::outlineColourId, Colour(theme::outline));
    setColour(juce::AlertWindow::backgroundColourId, Colour(theme::body));
    setColour(juce::AlertWindow::textColourId, Colour(theme::text));
    setColour(juce::AlertWindow::outlineColourId, Colour(theme::outline));
    setColour(juce::ScrollBar::thumbColourId, Colour(theme::outline));
    setColour(juce::ProgressBar::backgroundColourId, Colour(theme::bar));
    setColour(juce::ProgressBar::foregroundColourId, Colour(theme::accent));
    setColour(juce::Slider::rotarySliderOutlineColourId, Colour(0x66c9ccd3));
    setColour(juce::Slider::rotarySliderFillColourId, Colour(theme::accent));
    setColour(juce::Slider::thumbColourId, Colour(theme::accent));
    setColour(juce::PopupMenu::backgroundColourId, Colour(theme::menu));
    setColour(juce::PopupMenu::headerTextColourId, Colour(theme::quietText));
    setColour(juce::BubbleComponent::backgroundColourId, Colour(theme::menu));
    setColour(juce::BubbleComponent::outlineColourId, Colour(theme::outline));
    setColour(juce::TooltipWindow::backgroundColourId, Colour(theme::menu));
    living().push_back(this);
}

CLookAndFeel::~CLookAndFeel() {
    auto& all = living();
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
    if (&getDefaultLookAndFeel() == this) setDefaultLookAndFeel(all.empty() ? nullptr : all.back());
}

void CLookAndFeel::install() {
    setDefaultLookAndFeel(this);
}

void CLookAndFeel::drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float position,
                                    float startAngle, float endAngle, juce::Slider& slider) {
    const auto area = juce::Rectangle<int>(x, y, width, height).toFloat();
    const float radius = std::min(area.getWidth(), area.getHeight()) / 2.0f;
    if (radius < 4.0f) return;
    const auto middle = area.getCentre();
    const float angle = startAngle + position * (endAngle - startAngle);
    const float stroke = std::clamp(radius * 0.13f, 1.5f, 5.0f);
    const float ring = radius - stroke;
    const juce::PathStrokeType line(stroke, juce::PathStrokeType::curved, juce::PathStrokeType::rounded);

    g.setColour(slider.findColour(juce::Slider::rotarySliderOutlineColourId).withMultipliedAlpha(0.55f));
    g.strokePath(arc(middle, ring, startAngle, endAngle), line);
    // Settings that go both ways from the middle show how far they are from there.
    const bool fromMiddle = slider.getProperties().contains("fromMiddle");
    const float origin = fromMiddle ? (startAngle + endAngle) / 2.0f : startAngle;
    g.setColour(slider.findColour(juce::Slider::rotarySliderFillColourId));
    g.strokePath(arc(middle, ring, std::min(origin, angle), std::max(origin, angle)), line);

    const float cap = ring - stroke * 1.4f;
    drawCap(g, middle, cap, slider.isMouseOverOrDragging());
    g.setColour(slider.findColour(juce::Slider::thumbColourId));
    g.drawLine({middle.getPointOnCircumference(cap * 0.42f, angle),
                middle.getPointOnCircumference(cap * 0.86f, angle)},
               std::max(1.5f, stroke * 0.8f));
    if (slider.hasKeyboardFocus(true)) {
        g.setColour(Colour(theme::accent).withAlpha(0.8f));
        g.drawEllipse(juce::Rectangle<float>(2 * cap, 2 * cap).withCentre(middle).expanded(1.0f), 1.0f);
    }
}

void CLookAndFeel::drawButtonBackground(juce::Graphics& g, juce::Button& button, const Colour& colour,
                                        bool isOver, bool isDown) {
    const auto area = button.getLocalBounds().toFloat().reduced(0.5f);
    const auto fill = isDown ? colour.darker(0.25f) : isOver ? colour.brighter(0.12f) : colour;
    const float corner = std::min(4.0f, area.getHeight() / 3.0f);
    g.setGradientFill(
        {fill.brighter(0.05f), 0.0f, area.getY(), fill.darker(0.12f), 0.0f, area.getBottom(), false});
    g.fillRoundedRectangle(area, corner);
    g.setColour(button.hasKeyboardFocus(true) ? Colour(theme::accent) : Colour(theme::outline));
    g.drawRoundedRectangle(area, corner, 1.0f);
}

void CLookAndFeel::drawProgressBar(juce::Graphics& g, juce::ProgressBar& bar, int width, int height,
                                   double progress, const juce::String&) {
    const juce::Rectangle<float> area(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height));
    const float corner = area.getHeight() / 2.0f;
    g.setColour(bar.findColour(juce::ProgressBar::backgroundColourId));
    g.fillRoundedRectangle(area, corner);
    juce::Path outline;
    outline.addRoundedRectangle(area, corner);
    g.reduceClipRegion(outline);
    g.setColour(bar.findColour(juce::ProgressBar::foregroundColourId));
    if (progress >= 0.0) {
        g.fillRect(area.withWidth(area.getWidth() * static_cast<float>(std::min(progress, 1.0))));
    } else {
        // Length unknown: a third of the bar goes through it.
        const auto phase = static_cast<float>(juce::Time::getMillisecondCounter() % 1600) / 1600.0f;
        g.fillRoundedRectangle(area.withWidth(area.getWidth() / 3.0f)
                                   .translated(area.getWidth() * (phase * 4.0f / 3.0f - 1.0f / 3.0f), 0.0f),
                               corner);
    }
}

void CLookAndFeel::drawPopupMenuSectionHeader(juce::Graphics& g, const juce::Rectangle<int>& area,
                                              const juce::String& text) {
    g.setFont(getPopupMenuFont().boldened());
    g.setColour(findColour(juce::PopupMenu::headerTextColourId));
    g.drawFittedText(text, area.withTrimmedLeft(12).withTrimmedRight(12), juce::Justification::centredLeft,
                     1);
}

// The framework itself writes size and time dark and small.
void CLookAndFeel::drawFileBrowserRow(juce::Graphics& g, int width, int height, const juce::File& file,
                                      const juce::String& name, juce::Image* icon, const juce::String& size,
                                      const juce::String& time, bool isFolder, bool isSelected, int row,
                                      juce::DirectoryContentsDisplayComponent& list) {
    LookAndFeel_V4::drawFileBrowserRow(g, width, height, file, name, icon, {}, {}, isFolder, isSelected, row,
                                       list);
    constexpr int leastWidth = 450; // below it the name takes the whole row
    if (width <= leastWidth || isFolder) return;
    auto area = juce::Rectangle<int>(width, height).withTrimmedLeft(width * 7 / 10).withTrimmedRight(8);
    g.setFont(static_cast<float>(height) * 0.6f);
    g.setColour(isSelected ? findColour(juce::DirectoryContentsDisplayComponent::highlightedTextColourId)
                           : Colour(theme::quietText));
    g.drawFittedText(size, area.removeFromLeft(width / 12), juce::Justification::centredRight, 1);
    g.drawFittedText(time, area, juce::Justification::centredRight, 1);
}

// JUCE's own form, and the button's face where a layout gives it a colour.
void CLookAndFeel::drawComboBox(juce::Graphics& g, int width, int height, bool, int, int, int, int,
                                juce::ComboBox& combo) {
    const auto area = juce::Rectangle<int>(width, height).toFloat();
    const auto arrow = juce::Rectangle<float>(static_cast<float>(width) - 30.0f, 0.0f, 20.0f,
                                              static_cast<float>(height));
    constexpr float corner = 3.0f;
    g.setColour(combo.findColour(juce::ComboBox::backgroundColourId));
    g.fillRoundedRectangle(area, corner);
    if (combo.isColourSpecified(juce::ComboBox::buttonColourId)) {
        const juce::Graphics::ScopedSaveState saved(g);
        g.reduceClipRegion(area.withLeft(arrow.getX()).toNearestInt());
        g.setColour(combo.findColour(juce::ComboBox::buttonColourId));
        g.fillRoundedRectangle(area, corner);
    }
    g.setColour(combo.hasKeyboardFocus(true) ? Colour(theme::accent)
                                             : combo.findColour(juce::ComboBox::outlineColourId));
    g.drawRoundedRectangle(area.reduced(0.5f), corner, 1.0f);
    juce::Path path;
    path.startNewSubPath(arrow.getX() + 3.0f, arrow.getCentreY() - 2.0f);
    path.lineTo(arrow.getCentreX(), arrow.getCentreY() + 3.0f);
    path.lineTo(arrow.getRight() - 3.0f, arrow.getCentreY() - 2.0f);
    g.setColour(combo.findColour(juce::ComboBox::arrowColourId).withAlpha(combo.isEnabled() ? 0.9f : 0.2f));
    g.strokePath(path, juce::PathStrokeType(2.0f));
}

juce::Font CLookAndFeel::getTextButtonFont(juce::TextButton&, int height) {
    return juce::Font(std::clamp(static_cast<float>(height) * 0.62f, 8.0f, 14.0f));
}

juce::Font CLookAndFeel::getComboBoxFont(juce::ComboBox& combo) {
    return juce::Font(std::clamp(static_cast<float>(combo.getHeight()) * 0.62f, 8.0f, 14.0f));
}

juce::Typeface::Ptr CLookAndFeel::getTypefaceForFont(const juce::Font& font) {
    return completeTypeface(font, LookAndFeel_V4::getTypefaceForFont(installedFont(font)));
}

juce::Font CLookAndFeel::getPopupMenuFont() {
    return juce::Font(15.0f);
}

} // namespace zarno
