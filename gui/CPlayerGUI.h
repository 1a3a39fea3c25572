// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/PanelArtwork.h"
#include "gui/PanelBuilder.h"

#include <functional>
#include <string_view>

namespace zarno {

// The player panel: a background and the controls that a layout describes. Message thread.
class CPlayerGUI final : public juce::Component {
  public:
    // Tells the user what is wrong with a layout.
    using ShowMessage = std::function<void(const juce::String& caption, const juce::String& text)>;

    // `route`: through which the keyboard's notes go, may be null. Leads here from the first rebuild on.
    CPlayerGUI(ControlListeners listeners, KeyboardRoute* route, ShowMessage showMessage);
    ~CPlayerGUI() override;

    // Replaces all controls by those of `layout` and takes its size; `image`: an encoded picture for the
    // background, the built-in one when empty. A layout that cannot be read leaves the background alone.
    void rebuild(std::string_view layout, const std::vector<std::uint8_t>& image);

    const PanelControls& controls() const { return controls_; }
    // Every key up, those that the host holds, too.
    void releaseAllKeys();
    // What a bubble shall not cover: the controls, and the texts of labels.
    std::vector<juce::Rectangle<int>> occupiedPlaces() const;
    juce::MidiKeyboardState& keyboardState() { return keyboardState_; }
    void paint(juce::Graphics&) override;

  private:
    void publishKeyboards();
    void withdrawKeyboards();
    void replaceControls(std::string_view layout, const std::vector<std::uint8_t>& image);

    ControlListeners listeners_;
    KeyboardRoute* route_;
    ShowMessage showMessage_;
    juce::MidiKeyboardState keyboardState_; // outlives the controls: keyboards let their notes go
    juce::Image background_;                // null: the built-in one
    DefaultBackground defaultBackground_;
    PanelControls controls_;
};

} // namespace zarno
