// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ZInstrument.h"
#include "engine/ZSEDelegate.h"
#include "shell/ActivityMeter.h"
#include "shell/EditorPort.h"
#include "shell/KeyboardRoute.h"
#include "shell/LiveLibrary.h"
#include "shell/LoadController.h"
#include "shell/LoadRunner.h"
#include "shell/ModuleIdentity.h"
#include "shell/Settings.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <optional>

namespace zarno {

/// The object that the host talks to: two audio outputs, MIDI input, no parameters. It reports 0 programs,
/// although the program operations address the instruments of the library by index.
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
    /// [any] From the next block on the output is silent; MIDI is still handled.
    void setBypassed(bool bypassed) { bypassed_ = bypassed; }
    /// All voices stop at the start of the next block, and queued notes do not start.
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
    /// Index the instruments of the library, although there are 0 programs.
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
    void reportMessage(const char*, char* reply) override { reply[0] = 0; } // each load asks by itself
    void settingsChanged() override {}
    void requestLicenceText(char*) override {}

    /// The one way in which the instrument changes: entry `index` of the library when `path` is empty, else
    /// the file `path`. Selecting what is loaded does nothing, unless `reapply` asks for a fresh load.
    /// `synchronous`: returns when it is loaded; otherwise a load in the background begins, or goes on.
    void selectInstrument(int index, const juce::String& path, bool reapply, bool synchronous);

    /// The current instrument once more, in the background. The settings of one that is loaded are kept.
    void loadAgain();
    /// `path` in place of an instrument that a project wants and that is not there, with the project's
    /// settings.
    void loadInstead(const juce::String& path);

    /// [any] Ends the running load, if there is one.
    void cancelLoad() { cancelRequested_ = true; }

    /// No voice waits for the disk any more.
    void playLive() { noDiskWait_.emplace(engine_); }
    /// Makes the engine's random choices repeatable.
    void seedRandom(std::uint32_t seed);

    /// [any but audio] Before JUCE's wrapper is deleted: delivers what is posted to the message thread. JUCE's own
    /// notification of the host would otherwise run while the wrapper goes. Gives up after half a second.
    void flushMessages() { editorPort_.flushMessages(); }

    /// [message] Tells the host that there is something to save.
    void tellHostOfChange();

    ZInstrument& engine() { return engine_; }
    const ModuleIdentity& identity() const { return identity_; }
    /// [any] What is in the library now.
    std::shared_ptr<const Library> library() const { return library_.get(); }
    LiveLibrary& liveLibrary() { return library_; }
    const ActivityMeter& activityMeter() const { return activity_; }
    Settings& settings() { return settings_; }
    KeyboardRoute& keyboardRoute() { return keyboardRoute_; }
    const LoadController& loads() const { return loads_; }
    LoadRunner& loadRunner() { return loadRunner_; }

    /// [any]
    double progress() const { return progress_; }
    std::uint32_t groupsGeneration() const { return groupsGeneration_; }
    std::uint32_t loadGeneration() const { return loadGeneration_; }

  private:
    void run() override;
    void postEvents(const juce::MidiBuffer& midi);
    void releaseAllNotes();
    void loadNow(LoadRequest request);
    void startLoading();
    void performLoad();

    ZInstrument engine_;
    std::optional<ZInstrument::Hurry> noDiskWait_; // for tests
    KeyboardRoute keyboardRoute_{engine_};
    LiveLibrary library_;
    ActivityMeter activity_;
    std::atomic<bool> cancelRequested_{false}; // of the running load
    std::atomic<bool> bypassed_{false};
    bool isConstructed_ = false; // before that the host knows no effect, and cannot be told of its loads
    std::atomic<double> progress_{-1.0};
    std::atomic<std::uint32_t> groupsGeneration_{0}, loadGeneration_{0};
    Settings settings_;
    ModuleIdentity identity_;
    std::unique_ptr<juce::LookAndFeel> lookAndFeel_;
    LoadController loads_;
    EditorPort editorPort_{*this};
    LoadRunner loadRunner_{{engine_, *this, *this, settings_, editorPort_, loads_}};
};

} // namespace zarno
