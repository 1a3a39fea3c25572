// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <utility>
#include <vector>

namespace zarno {

class ZInstrument;

// What an instrument says of itself.
struct InstrumentInfo {
    juce::String title, remark;
    std::vector<std::pair<juce::String, juce::String>> keyswitches; // key ("C1"), name of the group
    juce::StringArray facts;                                        // file, pack, maker, version
};
// Title, remark and keyswitches of what is loaded. The caller keeps loads out.
InstrumentInfo infoOf(const ZInstrument& engine);

// "C4" is MIDI 60.
juce::String keyName(int key);

// "About this instrument", over the panel. Escape and Close close it. Message thread.
class AboutPanel final : public juce::Component {
  public:
    AboutPanel();
    std::function<void()> onClose;

    void open(InstrumentInfo info);
    const InstrumentInfo& info() const { return info_; }

    void paint(juce::Graphics&) override;
    void resized() override;
    bool keyPressed(const juce::KeyPress&) override;

  private:
    void close();

    InstrumentInfo info_;
    juce::TextEditor text_;
    juce::TextButton close_{"Close"};
};

} // namespace zarno
