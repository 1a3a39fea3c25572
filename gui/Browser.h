// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/LibraryView.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace zarno {

// The library over the panel: a search field and the instruments by folder. Arrow keys move the choice while one
// types; Return and a double click load; Escape closes. Message thread.
class Browser final : public juce::Component, private juce::ListBoxModel {
  public:
    Browser();

    std::function<void(int index)> onPick;
    std::function<void()> onClose, onRefresh, onPlainList;

    void setLibrary(const juce::StringArray& titles, const juce::StringArray& paths,
                    const juce::StringArray& folders, const juce::StringArray& recent);
    // Shows everything, with the library's instrument `current` chosen.
    void open(int current);
    void search(const juce::String& text);
    const LibraryView& view() const { return view_; }
    juce::ListBox& list() { return list_; }

    void paint(juce::Graphics&) override;
    void resized() override;
    bool keyPressed(const juce::KeyPress&) override;

  private:
    int getNumRows() override { return static_cast<int>(view_.rows().size()); }
    void paintListBoxItem(int row, juce::Graphics&, int width, int height, bool isSelected) override;
    void listBoxItemDoubleClicked(int row, const juce::MouseEvent&) override { pick(row); }
    void returnKeyPressed(int row) override { pick(row); }
    juce::String getNameForRow(int row) override;
    const LibraryView::Row* rowAt(int row) const;

    void applySearch();
    void showRows();
    void choose(int from, int direction);
    void pick(int row);
    void close();

    // Keys that move through the list leave the field.
    class SearchField final : public juce::TextEditor {
      public:
        explicit SearchField(Browser& owner)
            : owner_(owner) {}
        bool keyPressed(const juce::KeyPress& key) override {
            return owner_.keyPressed(key) || TextEditor::keyPressed(key);
        }

      private:
        Browser& owner_;
    };

    LibraryView view_;
    SearchField search_{*this};
    juce::TextButton refresh_{"Refresh"}, plain_{"Plain list"}, close_{"Close"};
    juce::ListBox list_;
    juce::Label nothing_;
    int current_ = -1;
};

} // namespace zarno
