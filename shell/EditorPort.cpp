// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/EditorPort.h"

#include "shell/CZSP.h"

namespace zarno {

ZInstrument& EditorPort::engine() {
    return processor_.engine();
}
const juce::CriticalSection& EditorPort::contentsLock() {
    return processor_.contentsLock();
}
std::uint32_t EditorPort::groupsGeneration() const {
    return processor_.groupsGeneration();
}
std::uint32_t EditorPort::loadGeneration() const {
    return processor_.loadGeneration();
}
juce::ListBoxModel& EditorPort::instrumentList() {
    return processor_;
}

juce::StringArray EditorPort::instrumentTitles() const {
    juce::StringArray titles;
    for (int i = 0; i < processor_.getNumRows(); ++i)
        titles.add(processor_.getProgramName(i));
    return titles;
}

int EditorPort::currentIndex() const {
    return processor_.currentIndex();
}
juce::String EditorPort::currentPath() const {
    return processor_.currentPath();
}

void EditorPort::selectInstrument(int index, const juce::String& path) {
    processor_.selectInstrument(index, path, false, false);
}

void EditorPort::tryAgain() {
    processor_.loadAgain();
}

bool EditorPort::isLoading() const {
    return processor_.isLoading();
}
bool EditorPort::lastLoadSucceeded() const {
    return processor_.lastLoadSucceeded();
}
double EditorPort::loadProgress() const {
    return processor_.progress();
}
EditorLink::Missing EditorPort::missingSamples() const {
    return processor_.missingSamples();
}

void EditorPort::locateMissingSamples(const juce::File& folder) {
    processor_.settings().set(settingKey::missingFolder, folder.getFullPathName());
    tryAgain();
}

bool EditorPort::takeTurnToTell() {
    const auto load = processor_.loadGeneration();
    return std::exchange(toldLoad_, load) != load;
}

juce::String EditorPort::setting(const juce::String& key, const juce::String& fallback) const {
    return processor_.settings().get(key, fallback);
}
void EditorPort::setSetting(const juce::String& key, const juce::String& value) {
    processor_.settings().set(key, value);
}

juce::String EditorPort::packTitle() const {
    return juce::String::fromUTF8(processor_.identity().packTitle.c_str());
}
juce::String EditorPort::vendorText() const {
    return juce::String::fromUTF8(processor_.identity().vendor.c_str());
}
void EditorPort::editEnded() {
    processor_.tellHostOfChange();
}
KeyboardRoute& EditorPort::keyboardRoute() {
    return processor_.keyboardRoute();
}

} // namespace zarno
