// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ZInstrument.h"
#include "shell/EditorLink.h"
#include "shell/KeyboardRoute.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <map>
#include <optional>

namespace zarno {

// A processor with nothing behind it, so that an editor can be made.
struct SilentProcessor final : juce::AudioProcessor {
    const juce::String getName() const override { return "Silent"; }
    void prepareToPlay(double, int) override {}
    void releaseResources() override {}
    void processBlock(juce::AudioBuffer<float>&, juce::MidiBuffer&) override {}
    using juce::AudioProcessor::processBlock;
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    juce::AudioProcessorEditor* createEditor() override { return nullptr; }
    bool hasEditor() const override { return true; }
    int getNumPrograms() override { return 0; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram(int) override {}
    const juce::String getProgramName(int) override { return {}; }
    void changeProgramName(int, const juce::String&) override {}
    void getStateInformation(juce::MemoryBlock&) override {}
    void setStateInformation(const void*, int) override {}
};

// An absolute path on this system.
inline juce::String rooted(const char* path) {
#if JUCE_WINDOWS
    return juce::String("C:") + path;
#else
    return path;
#endif
}

// What the window sees of a processor, with an engine that a test fills itself.
struct FakeLink final : EditorLink, juce::ListBoxModel {
    ZInstrument instrument;
    juce::CriticalSection lock;
    KeyboardRoute route{instrument};
    EditorWindow* window = nullptr;
    std::atomic<std::uint32_t> groups{0}; // counted on the audio thread
    std::uint32_t loads = 0;
    std::optional<std::uint32_t> toldLoad;
    juce::StringArray titles, paths, folders{rooted("/library")};
    juce::String libraryText;
    Activity heard;
    bool silent = false, isCancelled = false;
    std::uint32_t library = 0;
    int index = -1;
    bool loading = false, succeeded = true;
    double progress = -1.0;
    LoadReport report;
    juce::File located;
    Missing missing;
    std::map<juce::String, juce::String> settings;
    std::vector<std::pair<int, juce::String>> selected; // what selectInstrument was asked for
    int edits = 0, tries = 0;

    void setWindow(EditorWindow* open) override { window = open; }
    ZInstrument& engine() override { return instrument; }
    const juce::CriticalSection& contentsLock() override { return lock; }
    std::uint32_t groupsGeneration() const override { return groups; }
    std::uint32_t loadGeneration() const override { return loads; }
    juce::ListBoxModel& instrumentList() override { return *this; }
    juce::StringArray instrumentTitles() const override { return titles; }
    juce::String libraryProblem() const override { return libraryText; }
    int currentIndex() const override { return index; }
    void selectInstrument(int row, const juce::String& path) override { selected.emplace_back(row, path); }
    void tryAgain() override { ++tries; }
    bool isLoading() const override { return loading; }
    bool lastLoadSucceeded() const override { return succeeded; }
    double loadProgress() const override { return progress; }
    LoadReport lastLoad() const override { return report; }
    void locateInstrument(const juce::File& file) override { located = file; }
    Missing missingSamples() const override { return missing; }
    void locateMissingSamples(const juce::File&) override {}
    bool shouldReportPanelError() override { return std::exchange(toldLoad, loads) != loads; }
    juce::String setting(const juce::String& key, const juce::String& fallback) const override {
        const auto found = settings.find(key);
        return found != settings.end() ? found->second : fallback;
    }
    void setSetting(const juce::String& key, const juce::String& value) override { settings[key] = value; }
    juce::String packTitle() const override { return "A pack"; }
    juce::String vendorText() const override { return "A maker"; }
    void editEnded() override { ++edits; }
    KeyboardRoute& keyboardRoute() override { return route; }
    Activity activity() override { return heard; }
    bool lacksAudioDevice() const override { return silent; }
    bool hasAudioSettings() const override { return silent; }
    void showAudioSettings() override {}
    juce::StringArray instrumentPaths() const override { return paths; }
    juce::StringArray libraryFolders() const override { return folders; }
    void refreshLibrary() override { ++library; }
    std::uint32_t libraryGeneration() override { return library; }
    void cancelLoad() override { isCancelled = true; }

    int getNumRows() override { return titles.size(); }
    void paintListBoxItem(int row, juce::Graphics& g, int width, int height, bool selectedRow) override {
        const juce::Colour odd(237, 243, 254), chosen(56, 117, 215);
        g.fillAll(selectedRow ? chosen : row % 2 == 0 ? juce::Colours::white : odd);
        g.setColour(selectedRow ? juce::Colours::white : juce::Colours::black);
        g.drawText(titles[row], 2, 0, width - 4, height, juce::Justification::centredLeft);
    }
};

} // namespace zarno
