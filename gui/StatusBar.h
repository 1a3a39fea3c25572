// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/LevelMeter.h"
#include "gui/Notices.h"

#include <functional>
#include <vector>

namespace zarno {

// The two lines below the panel. Above: the instrument with its neighbours, and what can be opened. Below: what is
// to be said, and what is going on.
class StatusBar final : public juce::Component {
  public:
    static constexpr int height = 54, minWidth = 480;

    struct State {
        juce::String instrument; // as the button names it
        Notice notice;
        int voices = 0;
        int cpuPercent = 0; // of the time that the host gives for a block
        float peak = 0.0f;  // of the output, 1 is full scale
        bool canStepBack = false, canStepOn = false;
        bool hasAudioSettings = false;
        int zoomPercent = 100;

        bool operator==(const State&) const = default;
    };

    StatusBar();
    void show(const State& state);
    const State& state() const { return state_; }
    LevelMeter& meter() { return meter_; }
    // What a bubble shall not cover: all but the notice.
    std::vector<juce::Rectangle<int>> occupiedPlaces() const;

    // Each gets the button that was pressed, for a menu to open at.
    using Action = std::function<void(juce::Component& source)>;
    Action onPrevious, onNext, onInstrumentMenu, onLibrary, onLoad, onGroupMenu, onAbout, onAudio, onZoom, onPanic, onNotice;

    void paint(juce::Graphics&) override;
    void resized() override;

  private:
    void add(juce::TextButton& button, const juce::String& text, const juce::String& title,
             Action StatusBar::*action);

    State state_;
    juce::TextButton previous_, next_, instrument_, library_, load_, group_, about_, audio_, zoom_, action_, panic_;
    juce::Label notice_, voices_, cpu_;
    LevelMeter meter_;
};

} // namespace zarno
