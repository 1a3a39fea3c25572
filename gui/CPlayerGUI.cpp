// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CPlayerGUI.h"

#include "gui/CPlayerKeyboard.h"
#include "gui/ImageDecoder.h"
#include "gui/Theme.h"
#include "shell/KeyboardRoute.h"

#include <optional>

namespace zarno {

CPlayerGUI::CPlayerGUI(ControlListeners listeners, KeyboardRoute* route, ShowMessage showMessage)
    : listeners_(listeners)
    , route_(route)
    , showMessage_(std::move(showMessage)) {
    setTitle("Player panel");
    setSize(defaultBackgroundWidth, defaultBackgroundHeight); // until a layout says otherwise
    setFocusContainerType(FocusContainerType::focusContainer);
}

CPlayerGUI::~CPlayerGUI() {
    withdrawKeyboards();
}

void CPlayerGUI::publishKeyboards() {
    if (route_ != nullptr) route_->publish(&keyboardState_);
}

// Notes go while the route still leads to the engine; then the route. Keys that the host holds are forgotten:
// their note-offs reach the engine without us.
void CPlayerGUI::withdrawKeyboards() {
    for (CPlayerKeyboard* keyboard : controls_.keyboards)
        keyboard->releaseKeys();
    if (route_ != nullptr) route_->publish(nullptr);
    keyboardState_.reset();
}

// The audio thread walks the list of keyboards while their state is published, so they come and go only while
// it is not.
void CPlayerGUI::rebuild(std::string_view layoutText, const std::vector<std::uint8_t>& image) {
    withdrawKeyboards();
    replaceControls(layoutText, image);
    publishKeyboards();
}

void CPlayerGUI::replaceControls(std::string_view layoutText, const std::vector<std::uint8_t>& image) {
    controls_ = {};
    background_ = image.empty() ? juce::Image() : decodeImage(image.data(), image.size());
    auto layout = readLayout(layoutText);
    if (const auto* problem = std::get_if<LayoutProblem>(&layout)) {
        repaint();
        showMessage_(problem->caption, problem->text);
        return;
    }
    auto& description = std::get<Layout>(layout);
    setSize(description.width, description.height);
    controls_ = PanelBuilder(*this, keyboardState_, route_, listeners_).build(std::move(description));
    repaint();
}

void CPlayerGUI::releaseAllKeys() {
    for (CPlayerKeyboard* keyboard : controls_.keyboards)
        keyboard->releaseKeys();
    std::optional<KeyboardRoute::Hold> hold;
    if (route_ != nullptr) hold.emplace(*route_);
    keyboardState_.allNotesOff(0);
}

std::vector<juce::Rectangle<int>> CPlayerGUI::occupiedPlaces() const {
    std::vector<juce::Rectangle<int>> places;
    for (const auto& control : controls_.all) {
        const auto* label = dynamic_cast<const juce::Label*>(control.get());
        const auto area = control->getBounds();
        if (label == nullptr) {
            places.push_back(area);
        } else if (label->getText().isNotEmpty()) {
            const int height = juce::roundToInt(label->getFont().getHeight());
            const int width = label->getFont().getStringWidth(label->getText()) + 2;
            places.push_back(label->getJustificationType().appliedToRectangle(
                juce::Rectangle<int>(std::min(width, area.getWidth()), std::min(height, area.getHeight())),
                area.reduced(std::min(5, area.getWidth() / 4), 0)));
        }
    }
    return places;
}

void CPlayerGUI::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body));
    if (background_.isValid()) {
        g.setImageResamplingQuality(juce::Graphics::highResamplingQuality);
        g.drawImageAt(background_, 0, 0);
    } else {
        defaultBackground_.draw(g);
    }
}

} // namespace zarno
