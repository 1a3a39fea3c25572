// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/PanelArtwork.h"

#include "gui/PanelPictures.h"
#include "gui/Theme.h"

namespace zarno {
namespace {

std::unique_ptr<juce::Drawable> drawableOf(const char* svg) {
    const auto xml = juce::parseXML(juce::String::fromUTF8(svg));
    return xml != nullptr ? juce::Drawable::createFromSVG(*xml) : nullptr;
}

} // namespace

void DefaultBackground::draw(juce::Graphics& g) {
    const float scale = juce::jlimit(0.25f, 8.0f, g.getInternalContext().getPhysicalPixelScaleFactor());
    const juce::Rectangle<float> area(defaultBackgroundWidth, defaultBackgroundHeight);
    if (scale != scale_) {
        scale_ = scale;
        const auto pixels = (area * scale).getSmallestIntegerContainer();
        rendering_ = juce::Image(juce::Image::RGB, pixels.getWidth(), pixels.getHeight(), true);
        juce::Graphics inner(rendering_);
        if (const auto drawable = drawableOf(pictures::backgroundSvg))
            drawable->draw(inner, 1.0f, juce::AffineTransform::scale(scale));
    }
    g.drawImageTransformed(rendering_, juce::AffineTransform::scale(1.0f / scale_));
}

void PictureButton::paintButton(juce::Graphics& g, bool isOver, bool isDown) {
    ImageButton::paintButton(g, isOver, isDown);
    const auto area = getLocalBounds().toFloat();
    if (text_.isNotEmpty()) {
        g.setFont(juce::Font(juce::jlimit(8.0f, 14.0f, area.getHeight() * 0.62f)));
        g.setColour(findColour(juce::TextButton::textColourOffId));
        g.drawFittedText(text_, getLocalBounds(), juce::Justification::centred, 1);
    }
    if (!hasKeyboardFocus(true)) return;
    g.setColour(juce::Colour(theme::accent));
    g.drawRoundedRectangle(area.reduced(0.5f), 3.0f, 1.0f);
}

void DefaultStripButton::paintButton(juce::Graphics& g, bool, bool isDown) {
    constexpr float half = 17.0f;
    static const auto strip = drawableOf(pictures::buttonStripSvg);
    const bool isPressed = isDown || getToggleState();
    const float scale = static_cast<float>(std::min(getWidth(), getHeight())) / half;
    const auto area = getLocalBounds().toFloat().withSizeKeepingCentre(half * scale, half * scale);
    const juce::Graphics::ScopedSaveState saved(g);
    g.reduceClipRegion(area.getSmallestIntegerContainer());
    const auto place = juce::AffineTransform::translation(isPressed ? -half : 0.0f, 0.0f)
                           .scaled(scale)
                           .translated(area.getX(), area.getY());
    if (strip != nullptr) strip->draw(g, 1.0f, place);
    if (hasKeyboardFocus(true)) {
        g.setColour(juce::Colour(theme::accent));
        g.drawRoundedRectangle(area.reduced(0.5f), 3.5f * scale, 1.0f);
    }
}

} // namespace zarno
