// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/AboutPanel.h"

#include "engine/ZInstrument.h"
#include "gui/InstrumentView.h"
#include "gui/Theme.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace zarno {
juce::String keyName(int key) {
    return juce::MidiMessage::getMidiNoteName(key, true, true, 4);
}

InstrumentInfo infoOf(const ZInstrument& engine) {
    InstrumentInfo info;
    const auto& texts = engine.texts();
    if (texts.path.empty()) return info;
    info.title = fromEngine(texts.title.empty() ? texts.name : texts.title);
    info.remark = fromEngine(texts.remark);
    for (const auto& group : engine.groups())
        if (group->record.trigger == static_cast<std::int32_t>(GroupTrigger::Note))
            info.keyswitches.emplace_back(keyName(group->record.keyswitchNote), fromEngine(group->name));
    return info;
}

AboutPanel::AboutPanel() {
    text_.setMultiLine(true);
    text_.setReadOnly(true);
    text_.setCaretVisible(false);
    text_.setTitle("About this instrument");
    text_.setIndents(10, 8);
    close_.onClick = [this] { close(); };
    addAndMakeVisible(text_);
    addAndMakeVisible(close_);
    setTitle("About this instrument");
    setWantsKeyboardFocus(true);
    setFocusContainerType(FocusContainerType::keyboardFocusContainer);
}

void AboutPanel::open(InstrumentInfo info) {
    info_ = std::move(info);
    const auto write = [this](const juce::String& text, float height, std::uint32_t colour) {
        text_.setFont(juce::Font(height));
        text_.setColour(juce::TextEditor::textColourId, juce::Colour(colour));
        text_.moveCaretToEnd();
        text_.insertTextAtCaret(text + "\n");
    };
    text_.setReadOnly(false);
    text_.clear();
    write(info_.title.isEmpty() ? juce::String("No instrument loaded") : info_.title, theme::titleHeight,
          theme::text);
    if (info_.remark.isNotEmpty()) write(info_.remark, theme::textHeight, theme::text);
    if (!info_.keyswitches.empty()) write("\nKeyswitches", theme::textHeight, theme::quietText);
    for (const auto& [key, name] : info_.keyswitches)
        write(key + ": " + name, theme::textHeight, theme::text);
    if (!info_.facts.isEmpty()) write("\n" + info_.facts.joinIntoString("\n"), theme::smallTextHeight, theme::quietText);
    text_.setReadOnly(true);
    text_.setCaretPosition(0);
    setVisible(true);
    toFront(false);
    if (isShowing()) close_.grabKeyboardFocus();
}

void AboutPanel::close() {
    setVisible(false);
    if (onClose) onClose();
}

bool AboutPanel::keyPressed(const juce::KeyPress& key) {
    if (key != juce::KeyPress::escapeKey) return false;
    close();
    return true;
}

void AboutPanel::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(theme::body));
}

void AboutPanel::resized() {
    auto area = getLocalBounds().reduced(10, 8);
    close_.setBounds(area.removeFromTop(26).removeFromRight(58));
    text_.setBounds(getLocalBounds().reduced(10, 8).withTrimmedRight(66));
}

} // namespace zarno
