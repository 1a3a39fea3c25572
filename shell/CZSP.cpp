// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/CZSP.h"

#include "data/Limits.h"
#include "gui/CLookAndFeel.h"
#include "gui/CZSPGUI.h"
#include "platform/Module.h"
#include "platform/Patience.h"
#include "platform/ThreadRole.h"
#include "shell/SampleSearch.h"
#include "shell/UserFolders.h"

#include <algorithm>

namespace zarno {
namespace {

juce::String fromUtf8(const std::string& text) {
    return juce::String::fromUTF8(text.data(), (int) text.size());
}

// Empty when the file system does not answer: the host goes on without it.
Library scanLibrary() {
    const auto library = std::make_shared<Library>();
    const std::vector folders{libraryFolderBeside(modulePath()), userLibraryFolder()};
    const bool answers = doWithPatience(
        limits::stalledDiskMs, [=](const SignOfLife& alive) { *library = Library::scan(folders, alive); });
    return answers ? std::move(*library) : Library::unanswered();
}

} // namespace

CZSP::CZSP()
    : AudioProcessor(BusesProperties().withOutput("Output", juce::AudioChannelSet::stereo(), true))
    , Thread("ZSP Loading Thread")
    , settings_(settingsFileLocation())
    , identity_(readOwnIdentity()) {
    library_ = scanLibrary();
    auto lookAndFeel = std::make_unique<CLookAndFeel>();
    lookAndFeel->install();
    lookAndFeel_ = std::move(lookAndFeel);
    engine_.setDelegate(this);
    if (!library_.entries.empty()) selectInstrument(0, {}, false, true);
}

// The loading thread looks for the signal every few milliseconds and never waits for this one.
CZSP::~CZSP() {
    constexpr int steps = 200, stepMs = 5;
    signalThreadShouldExit();
    for (int i = 0; i < steps && isThreadRunning(); ++i)
        juce::Thread::sleep(stepMs);
    waitForThreadToExit(-1);
    endOfLoad_->abandon();
    engine_.setDelegate(nullptr);
}

bool CZSP::isBusesLayoutSupported(const BusesLayout& layout) const {
    return layout.getMainInputChannelSet().isDisabled() &&
           layout.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void CZSP::prepareToPlay(double sampleRate, int) {
    engine_.setSampleRate(static_cast<float>(sampleRate));
    releaseAllNotes();
}

// A note-off or a pedal-up that the host sent while we were stopped or suspended never reached us.
void CZSP::releaseAllNotes() {
    engine_.postEvent(midi::controller, 0, 64, 0, 0);
    engine_.postEvent(midi::controller, 0, 123, 0, 0);
}

void CZSP::setNonRealtime(bool nonRealtime) noexcept {
    AudioProcessor::setNonRealtime(nonRealtime);
    engine_.setOffline(nonRealtime);
}

void CZSP::postEvents(const juce::MidiBuffer& midi) {
    for (const juce::MidiMessageMetadata event : midi) {
        if (event.numBytes < 1 || event.numBytes > 3) continue; // system exclusive
        const int type = event.data[0] & 0xF0;
        const int position = std::max(event.samplePosition, 0);
        if (event.numBytes == 3 && (type == midi::noteOn || type == midi::noteOff)) {
            keyboardRoute_.handOver(event.getMessage(), position);
            continue;
        }
        engine_.postEvent(type, event.data[0] & 0x0F, event.numBytes > 1 ? event.data[1] : 0,
                          event.numBytes > 2 ? event.data[2] : 0, static_cast<std::uint32_t>(position));
    }
}

// Bypassed, MIDI goes on being heeded, so that pedals and keyswitches are right afterwards, but no voice
// outlives the block.
void CZSP::processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) {
    const thread::Acts asAudio(thread::audio);
    const bool unheard = bypassed_;
    if (unheard) engine_.requestStop();
    postEvents(midi);
    midi.clear();
    auto** channels =
        const_cast<float**>(audio.getArrayOfWritePointers()); // the engine leaves the pointers be
    engine_.renderBlock(channels, audio.getNumChannels(), audio.getNumSamples());
    if (!unheard) return;
    audio.clear();
    engine_.requestStop();
}

juce::AudioProcessorEditor* CZSP::createEditor() {
    return new CZSPGUI(*this, editorPort_);
}

int CZSP::getCurrentProgram() {
    return std::max(library_.indexOf(currentPath().toStdString()), 0);
}

void CZSP::setCurrentProgram(int index) {
    selectInstrument(index, {}, false, false);
}

const juce::String CZSP::getProgramName(int index) {
    return library_.contains(index) ? fromUtf8(library_.entries[static_cast<std::size_t>(index)].title)
                                    : juce::String();
}

int CZSP::getNumRows() {
    return static_cast<int>(library_.entries.size());
}

void CZSP::paintListBoxItem(int row, juce::Graphics& graphics, int width, int height, bool selected) {
    const juce::Colour odd(237, 243, 254), chosen(56, 117, 215);
    graphics.fillAll(selected ? chosen : row % 2 == 0 ? juce::Colours::white : odd);
    graphics.setColour(selected ? juce::Colours::white : juce::Colours::black);
    graphics.drawText(getProgramName(row), 2, 0, width - 4, height, juce::Justification::centredLeft, true);
}

void CZSP::listBoxItemDoubleClicked(int row, const juce::MouseEvent&) {
    selectInstrument(row, {}, false, false);
}

bool CZSP::loadProgress(float fraction, const char*, const char*) {
    progress_ = fraction;
    return !threadShouldExit();
}

void CZSP::groupsChanged() {
    groupsGeneration_.fetch_add(1, std::memory_order_relaxed);
}

void CZSP::reportMessage(const char* text, char* reply) {
    SampleSearch search({settings_.get(settingKey::missingFolder).toStdString(), homeFolder()}, {},
                        [this] { return !threadShouldExit(); });
    const std::string found = search.find(text);
    {
        const juce::ScopedLock hold(lock_);
        locatedPath_ = fromUtf8(found);
    }
    if (found.size() < replyBytes) std::copy_n(found.c_str(), found.size() + 1, reply);
}

void CZSP::tellHostOfChange() {
    // The interface has no better word for a changed state than a changed program.
    updateHostDisplay(ChangeDetails().withProgramChanged(true).withNonParameterStateChanged(true));
}

juce::String CZSP::currentPath() const {
    const juce::ScopedLock hold(lock_);
    return currentPath_;
}

int CZSP::currentIndex() const {
    const juce::ScopedLock hold(lock_);
    return currentIndex_;
}

EditorLink::Missing CZSP::missingSamples() const {
    const juce::ScopedLock hold(lock_);
    return missing_;
}

void CZSP::seedRandom(std::uint32_t seed) {
    const juce::ScopedLock hold(getCallbackLock());
    engine_.seedRandom(seed);
}

} // namespace zarno
