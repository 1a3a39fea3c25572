// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/WindowZoom.h"

#include "gui/WindowMenus.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zarno {
namespace {

constexpr const char* zoomKey = "zoom";
constexpr int frameHeight = 40; // of a title bar, or of what a host puts around the window

} // namespace

WindowZoom::WindowZoom(EditorLink& link)
    : link_(link)
    , chosen_(zoomFromSetting(link.setting(zoomKey))) {}

void WindowZoom::choose(int percent) {
    chosen_ = zoomFromSetting(juce::String(percent));
    link_.setSetting(zoomKey, juce::String(chosen_));
}

int WindowZoom::stepped(int direction) const {
    if (direction == 0) return 100;
    const auto* first = std::begin(zoomPercents);
    const auto place = std::find(first, std::end(zoomPercents), percent()) - first + direction;
    return first[std::clamp<std::ptrdiff_t>(place, 0, std::ssize(zoomPercents) - 1)];
}

void WindowZoom::fit(const juce::Component& window, int width, int height) {
    const auto& displays = juce::Desktop::getInstance().getDisplays();
    const auto* display = displays.getDisplayForRect(window.getScreenBounds());
    if (display == nullptr) return;
    // Quarters, as desktops offer them. JUCE draws at its own scale of the display already.
    const double wanted = std::round(system_.desktopScale() / display->scale * 4.0) / 4.0;
    desktop_ = static_cast<float>(std::max(1.0, wanted));
    // A host's scale is a transform of the window itself.
    const double unit = juce::Component::getApproximateScaleFactorForComponent(&window) *
                        static_cast<double>(desktop_);
    const auto area = display->userArea.withTrimmedTop(frameHeight);
    const double room = std::min(area.getWidth() / (width * unit), area.getHeight() / (height * unit));
    largest_ = zoomPercents[0];
    for (const int percent : zoomPercents)
        if (percent <= room * 100.0) largest_ = percent;
}

} // namespace zarno
