// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/CZSP.h"

#include "data/Limits.h"
#include "gui/CLookAndFeel.h"
#include "gui/CZSPGUI.h"
#include "platform/Paths.h"
#include "platform/RunWithTimeout.h"
#include "platform/ThreadRole.h"
#include "shell/HostChunk.h"
#include "shell/UserFolders.h"

#include <algorithm>

namespace zarno {
namespace {

juce::String fromUtf8(const std::string& text) {
    return juce::String::fromUTF8(text.data(), (int) text.size());
}

// A file system that does not answer counts as one that does not have the file.
bool isThere(const std::string& path) {
    const auto found = std::make_shared<bool>(false);
    return runWithTimeout(limits::hungReadMs, [=](const SignOfLife&) { *found = isRegularFile(path); }) &&
           *found;
}

} // namespace

CZSP::CZSP()
    : AudioProcessor(BusesProperties().withOutput("Output", juce::AudioChannelSet::stereo(), true))
    , Thread("ZSP Loading Thread")
    , library_(libraryFolders())
    , settings_(settingsFileLocation())
    , identity_(readOwnIdentity()) {
    auto lookAndFeel = std::make_unique<CLookAndFeel>();
    lookAndFeel->install();
    lookAndFeel_ = std::move(lookAndFeel);
    engine_.setDelegate(this);
    if (!library()->entries.empty()) selectInstrument(0, {}, false, true);
    isConstructed_ = true;
}

// The loading thread looks for the signal every few milliseconds and never waits for this one.
CZSP::~CZSP() {
    constexpr int steps = 200, stepMs = 5;
    loads_.close();
    signalThreadShouldExit();
    for (int i = 0; i < steps && isThreadRunning(); ++i)
        juce::Thread::sleep(stepMs);
    waitForThreadToExit(-1);
    editorPort_.abandonMessages();
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

// Note-offs and pedal-ups that the host sends while processing is off never arrive.
void CZSP::releaseAllNotes() {
    engine_.requestRelease();
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

// While bypassed, MIDI is still handled, so that pedals and keyswitches are right afterwards; no voice
// outlives the block.
void CZSP::processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) {
    const thread::Acts asAudio(thread::audio);
    const ActivityMeter::Block measured(activity_, audio, engine_.sampleRate());
    const bool isSilent = bypassed_;
    if (isSilent) engine_.requestStop();
    postEvents(midi);
    midi.clear();
    auto** channels =
        const_cast<float**>(audio.getArrayOfWritePointers()); // the engine does not change the pointers
    engine_.renderBlock(channels, audio.getNumChannels(), audio.getNumSamples());
    if (!isSilent) return;
    audio.clear();
    engine_.requestStop();
}

juce::AudioProcessorEditor* CZSP::createEditor() {
    return new CZSPGUI(*this, editorPort_);
}

int CZSP::getCurrentProgram() {
    return std::max(library()->indexOf(loads_.current().path), 0);
}

void CZSP::setCurrentProgram(int index) {
    selectInstrument(index, {}, false, false);
}

const juce::String CZSP::getProgramName(int index) {
    const auto titles = library();
    return titles->contains(index) ? fromUtf8(titles->entries[static_cast<std::size_t>(index)].title)
                                    : juce::String();
}

int CZSP::getNumRows() {
    return static_cast<int>(library()->entries.size());
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
    return !threadShouldExit() && !cancelRequested_;
}

void CZSP::groupsChanged() {
    groupsGeneration_.fetch_add(1, std::memory_order_relaxed);
}

void CZSP::selectInstrument(int index, const juce::String& path, bool reapply, bool synchronous) {
    const auto [target, targetIndex] = library()->resolve(index, path.toStdString());
    if (target.empty()) {
        if (reapply) loadRunner_.applyState(splitChunk(loads_.saved().chunk).tail);
    } else if (synchronous) {
        if (reapply || target != loads_.current().path) loadNow({target, targetIndex, {}, {}});
    } else if (loads_.select(target, targetIndex) || (reapply && loads_.reload({}))) {
        startLoading();
    }
}

void CZSP::loadAgain() {
    std::vector<std::uint8_t> liveState;
    if (loads_.isCurrentLoaded()) {
        juce::MemoryBlock chunk;
        getStateInformation(chunk);
        const auto tail =
            splitChunk({static_cast<const std::uint8_t*>(chunk.getData()), chunk.getSize()}).tail;
        liveState.assign(tail.begin(), tail.end());
    }
    if (loads_.reload(std::move(liveState))) startLoading();
}

void CZSP::loadInstead(const juce::String& path) {
    const auto [target, index] = library()->resolve(-1, path.toStdString());
    if (loads_.replaceMissing(target, index)) startLoading();
}

void CZSP::loadNow(LoadRequest request) {
    if (loads_.restore(std::move(request))) performLoad();
}

// Only the reader has the lowest priority: the loading thread holds the callback lock for moments, in which
// the audio thread waits for it even on a busy machine.
void CZSP::startLoading() {
    progress_ = -1.0;
    editorPort_.loadingStarted();
    waitForThreadToExit(-1); // of a former load, which has only to return
    if (startThread(juce::Thread::Priority::normal)) return;
    loadRunner_.fail();
    editorPort_.postEndOfLoad();
}

void CZSP::run() {
    performLoad();
}

void CZSP::performLoad() {
    cancelRequested_ = false;
    loadRunner_.perform();
    loadGeneration_.fetch_add(1, std::memory_order_relaxed);
    if (isConstructed_ && !threadShouldExit()) editorPort_.postEndOfLoad();
}

// Contents lock first: a load cannot replace the engine's values between the look at the state and the copy.
void CZSP::getStateInformation(juce::MemoryBlock& chunk) {
    const juce::ScopedLock hold(loadRunner_.contentsLock());
    auto [bytes, path, pathAlone] = loads_.saved();
    if (bytes.empty() && pathAlone) bytes = encodeChunkPath(path);
    if (bytes.empty())
        bytes = encodeChunk(path, engine_.settings(), engine_.currentGroupIndex(), engine_.groups());
    chunk.append(bytes.data(), bytes.size());
}

void CZSP::setStateInformation(const void* data, int size) {
    if (data == nullptr || size <= 0) return;
    const std::span chunk(static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size));
    const auto [wanted, tail] = splitChunk(chunk);
    if (wanted.empty()) return;
    // After a library has moved, the instrument of the same file name stands in.
    std::string path = wanted;
    const auto library = this->library();
    if (const int standIn = library->indexOfFileName(wanted); standIn >= 0 && !isThere(wanted))
        path = library->entries[static_cast<std::size_t>(standIn)].path;
    loadNow({path, library->indexOf(path), {chunk.begin(), chunk.end()}, {tail.begin(), tail.end()}});
}

void CZSP::tellHostOfChange() {
    // The interface has no better word for a changed state than a changed program.
    updateHostDisplay(ChangeDetails().withProgramChanged(true).withNonParameterStateChanged(true));
}

void CZSP::seedRandom(std::uint32_t seed) {
    const juce::ScopedLock hold(getCallbackLock());
    engine_.seedRandom(seed);
}

} // namespace zarno
