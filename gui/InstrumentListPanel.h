// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace zarno {

// The library as a list over the panel. Typing jumps to a name; Return and a double click load; Escape and a
// click beside the list close it.
class InstrumentListPanel final : public juce::Component {
  public:
    // The rows are the model's; `titles` gives the same names, for typing.
    InstrumentListPanel(juce::ListBoxModel& model, std::function<juce::StringArray()> titles);

    std::function<void(int row)> onPick;
    std::function<void()> onClose;

    // Shows the list with this row in view.
    void open(int row);

    // The row that typed text means: the first title that begins with it, else the first that contains it, -1
    // when there is none. Case does not count.
    static int rowFor(const juce::String& typed, const juce::StringArray& titles);

    void paint(juce::Graphics&) override;
    void resized() override;
    void mouseDown(const juce::MouseEvent&) override;
    void mouseDoubleClick(const juce::MouseEvent&) override;

  private:
    class TypingList final : public juce::ListBox {
      public:
        explicit TypingList(InstrumentListPanel& owner)
            : owner_(owner) {}
        bool keyPressed(const juce::KeyPress& key) override {
            return owner_.keyTyped(key) || ListBox::keyPressed(key);
        }

      private:
        InstrumentListPanel& owner_;
    };

    bool keyTyped(const juce::KeyPress& key);

    std::function<juce::StringArray()> titles_;
    TypingList list_{*this};
    juce::String typed_;
    juce::uint32 typedAt_ = 0; // ms
};

} // namespace zarno
