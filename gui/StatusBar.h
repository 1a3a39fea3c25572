// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/CSpinner.h"

#include <functional>

namespace zarno {

// The narrow bar below the panel: what can be loaded on the left, what is going on in the middle, the zoom on
// the right.
class StatusBar final : public juce::Component {
  public:
    static constexpr int height = 28, minWidth = 480;

    struct State {
        int voices = 0;
        bool isStreaming = false;
        juce::String missing; // "3 samples missing", empty when none is
        bool hasFailed = false;
        juce::String problem;    // of the last load, one sentence; empty when all is well
        bool canLocate = false;  // the instrument file is not there
        int zoomPercent = 100;

        bool operator==(const State&) const = default;
    };

    StatusBar();
    void show(const State& state);

    // Each gets the button that was pressed, for a menu to open at.
    using Action = std::function<void(juce::Component& source)>;
    Action onLoad, onInstrumentMenu, onGroupMenu, onList, onMissing, onLocate, onTryAgain, onZoom;

    void paint(juce::Graphics&) override;
    void resized() override;

  private:
    juce::TextButton& add(juce::TextButton& button, const juce::String& text, const juce::String& title,
                          Action StatusBar::*action);

    State state_;
    juce::TextButton load_, instruments_, groups_, list_, missing_, locate_, tryAgain_, zoom_;
    juce::Label activityText_;
    CSpinner::ProgressPetal light_;
};

} // namespace zarno
