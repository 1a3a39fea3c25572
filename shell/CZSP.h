// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "engine/ZSEDelegate.h"
#include "shell/EditorPort.h"
#include "shell/KeyboardRoute.h"
#include "shell/Library.h"
#include "shell/MessageCall.h"
#include "shell/ModuleIdentity.h"
#include "shell/Settings.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>

namespace zarno {

class FolderQuestion;
class LoadJob;

/// The one object the host talks to: no audio inputs, two outputs, MIDI in; no parameters and no programs
/// that a host sees, though the program operations reach the instruments of the library.
class CZSP final : public juce::AudioProcessor,
                   public juce::ListBoxModel,
                   public ZSEDelegate,
                   private juce::Thread {
  public:
    CZSP();
    ~CZSP() override;

    const juce::String getName() const override { return "Zarno Sampler Player"; }
    bool isBusesLayoutSupported(const BusesLayout& layout) const override;
    const juce::String getInputChannelName(int) const override { return {}; }
    const juce::String getOutputChannelName(int index) const override {
        return index == 0 ? "Left" : "Right";
    }
    bool isInputChannelStereoPair(int) const override { return false; }
    bool isOutputChannelStereoPair(int) const override { return true; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    double getTailLengthSeconds() const override { return 0.0; }

    void prepareToPlay(double sampleRate, int blockSize) override;
    void releaseResources() override {}
    void setNonRealtime(bool nonRealtime) noexcept override;
    void processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;
    /// [any] From the next block on: silence, during which MIDI is heeded still.
    void setBypassed(bool bypassed) { bypassed_ = bypassed; }
    /// All voices stop at the next block's start, and nothing that waits begins.
    void reset() override { engine_.requestStop(); }

    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override { return true; }

    int getNumParameters() override { return 0; }
    const juce::String getParameterName(int) override { return {}; }
    float getParameter(int) override { return 0.0f; }
    const juce::String getParameterText(int) override { return {}; }
    void setParameter(int, float) override {}
    bool isParameterAutomatable(int) const override { return true; }
    bool isMetaParameter(int) const override { return false; }

    int getNumPrograms() override { return 0; }
    /// These three mean the instruments of the library, although there are 0 programs.
    int getCurrentProgram() override;
    void setCurrentProgram(int index) override;
    const juce::String getProgramName(int index) override;
    void changeProgramName(int, const juce::String&) override {}

    void getStateInformation(juce::MemoryBlock& chunk) override;
    void setStateInformation(const void* data, int size) override;

    int getNumRows() override;
    void paintListBoxItem(int row, juce::Graphics& graphics, int width, int height, bool selected) override;
    void listBoxItemDoubleClicked(int row, const juce::MouseEvent&) override;

    bool loadProgress(float fraction, const char* groupName, const char* sampleName) override;
    void groupsChanged() override;
    void reportMessage(const char* text, char* reply) override;
    void settingsChanged() override {}
    void requestLicenceText(char*) override {}

    /// The one way in which the instrument changes: entry `index` of the library when `path` is empty, else
    /// the file `path`. Selecting the current one does nothing, unless `reapply` asks for a fresh load.
    void selectInstrument(int index, const juce::String& path, bool reapply, bool synchronous);

    /// The current instrument once more, in the background. The settings of one that is loaded are kept.
    void loadAgain();

    /// Makes the engine's random choices repeatable.
    void seedRandom(std::uint32_t seed);

    /// The host is told that there is something to save.
    void tellHostOfChange();

    ZInstrument& engine() { return engine_; }
    const ModuleIdentity& identity() const { return identity_; }
    Settings& settings() { return settings_; }
    KeyboardRoute& keyboardRoute() { return keyboardRoute_; }
    /// Held while groups, zones and texts of the engine are looked at or replaced.
    const juce::CriticalSection& contentsLock() const { return contentsLock_; }

    /// Any thread.
    bool isLoading() const { return loading_; }
    bool lastLoadSucceeded() const { return lastLoadSucceeded_; }
    double progress() const { return progress_; }
    std::uint32_t groupsGeneration() const { return groupsGeneration_; }
    std::uint32_t loadGeneration() const { return loadGeneration_; }
    juce::String currentPath() const;
    int currentIndex() const;
    EditorLink::Missing missingSamples() const;

  private:
    void run() override;
    void showEndOfLoad();
    void askAfterwards(EditorWindow& window);
    bool mayAsk() const;
    juce::File missingFolder() const;
    void postEvents(const juce::MidiBuffer& midi);
    void releaseAllNotes();

    bool choose(int& index, juce::String& target, bool reapply);
    void startLoading();
    void loadNow();
    void load(bool inBackground);
    LoadResult readAndTakeOver(const juce::String& path, bool inBackground);
    void discuss(LoadJob& job, std::unique_ptr<FolderQuestion>& question);
    void endLoad();
    void applyPendingState();
    void makeOnlyActiveGroup(std::int32_t index);

    ZInstrument engine_;
    KeyboardRoute keyboardRoute_{engine_};
    Library library_;
    std::atomic<bool> bypassed_{false};
    std::atomic<bool> loading_{false};
    std::atomic<bool> lastLoadSucceeded_{true};
    std::atomic<double> progress_{-1.0};
    std::atomic<std::uint32_t> groupsGeneration_{0}, loadGeneration_{0};
    Settings settings_;
    ModuleIdentity identity_;
    EditorPort editorPort_{*this};
    std::unique_ptr<juce::LookAndFeel> lookAndFeel_;
    const std::shared_ptr<MessageCall> endOfLoad_ = MessageCall::make([this] { showEndOfLoad(); });
    std::atomic<int> waiting_{0}; // for the running load to end: it is to ask nobody

    juce::CriticalSection contentsLock_; // taken before the callback lock
    juce::CriticalSection lock_;         // guards all below; nothing else is locked under it
    juce::String currentPath_;           // of what is loaded, being loaded, or chosen during a load
    juce::String loadedPath_;            // of the last load
    juce::String locatedPath_;
    int currentIndex_ = -1;
    bool running_ = false;                    // a load; changes together with loading_
    bool unasked_ = false;                    // the last load has a question, and the window is open
    EditorLink::Missing missing_;             // in the last load
    std::vector<std::uint8_t> receivedChunk_; // restored, and not loaded yet
    std::vector<std::uint8_t> pendingState_;  // its tail, to be applied after the load
};

} // namespace zarno
