// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/CZSP.h"

#include "data/load/InstrumentLoader.h"
#include "platform/Module.h"
#include "shell/HostChunk.h"
#include "shell/PlainEditor.h"
#include "shell/UserFolders.h"

#include <algorithm>

namespace zarno {
namespace {

juce::String fromUtf8(const std::string& text) {
    return juce::String::fromUTF8(text.data(), (int) text.size());
}

} // namespace

CZSP::CZSP()
    : AudioProcessor(BusesProperties().withOutput("Output", juce::AudioChannelSet::stereo(), true))
    , Thread("ZSP Loading Thread")
    , identity_(readOwnIdentity()) {
    library_ = Library::scan({libraryFolderBeside(modulePath()), userLibraryFolder()});
    engine_.setDelegate(this);
    if (!library_.entries.empty()) selectInstrument(0, {}, false, true);
}

CZSP::~CZSP() {
    engine_.setDelegate(nullptr);
}

void CZSP::run() {}

bool CZSP::isBusesLayoutSupported(const BusesLayout& layout) const {
    return layout.getMainInputChannelSet().isDisabled() &&
           layout.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void CZSP::prepareToPlay(double sampleRate, int) {
    engine_.setSampleRate(static_cast<float>(sampleRate));
    // A note-off or a pedal-up that the host sent while it had us stopped never reached us.
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

void CZSP::processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) {
    postEvents(midi);
    midi.clear();
    auto** channels =
        const_cast<float**>(audio.getArrayOfWritePointers()); // the engine leaves the pointers be
    engine_.renderBlock(channels, audio.getNumChannels(), audio.getNumSamples());
}

// MIDI goes on being heeded, so that pedals and keyswitches are right afterwards, but no voice outlives the
// block.
void CZSP::processBlockBypassed(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) {
    engine_.requestStop();
    processBlock(audio, midi);
    audio.clear();
    engine_.requestStop();
}

juce::AudioProcessorEditor* CZSP::createEditor() {
    return new PlainEditor(*this, fromUtf8(engine_.texts().name));
}

int CZSP::getCurrentProgram() {
    return std::max(library_.indexOf(currentPath_.toStdString()), 0);
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

bool CZSP::loadProgress(float, const char*, const char*) {
    return !threadShouldExit();
}

void CZSP::groupsChanged() {
    groupsGeneration_.fetch_add(1, std::memory_order_relaxed);
}

void CZSP::reportMessage(const char*, char* reply) {
    reply[0] = 0;
}

void CZSP::seedRandom(std::uint32_t seed) {
    const juce::ScopedLock hold(getCallbackLock());
    engine_.seedRandom(seed);
}

void CZSP::selectInstrument(int index, const juce::String& path, bool reapply, bool) {
    juce::String target = path;
    if (path.isEmpty() && library_.contains(index))
        target = fromUtf8(library_.entries[static_cast<std::size_t>(index)].path);
    else if (const int found = library_.indexOf(path.toStdString()); found >= 0)
        index = found;
    if (target == currentPath_ && !reapply) return;
    if (target.isEmpty()) {
        if (reapply) applyPendingState();
        return;
    }
    currentPath_ = target;
    currentIndex_ = index;
    loading_ = true;
    load();
}

void CZSP::load() {
    suspendProcessing(true);
    engine_.setLoading(true);
    lastLoadSucceeded_ = loadInstrument(engine_, currentPath_.toStdString()).loaded;
    engine_.setLoading(false);
    suspendProcessing(false);
    applyPendingState();
    loading_ = false;
}

void CZSP::getStateInformation(juce::MemoryBlock& chunk) {
    const auto bytes = encodeChunk(currentPath_.toStdString(), engine_.settings(),
                                   engine_.currentGroupIndex(), engine_.groups());
    chunk.append(bytes.data(), bytes.size());
}

void CZSP::setStateInformation(const void* data, int size) {
    if (data == nullptr || size <= 0) return;
    const auto parts = splitChunk({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)});
    if (parts.path.empty()) return;
    pendingState_ = std::make_unique<juce::MemoryBlock>(parts.tail.data(), parts.tail.size());
    selectInstrument(-1, fromUtf8(parts.path), true, true);
}

void CZSP::applyPendingState() {
    const auto pending = std::move(pendingState_);
    if (!pending) return;
    const auto state = decodeTail({static_cast<const std::uint8_t*>(pending->getData()), pending->getSize()},
                                  engine_.groups().size());
    const juce::ScopedLock hold(getCallbackLock());
    if (state.settings) takeRestoredFields(engine_.settings(), *state.settings);
    engine_.requestApplySettings();
    for (std::size_t i = 0; i < state.groups.size(); ++i) {
        copyGroup(engine_.groups()[i]->record, state.groups[i]);
        engine_.prepareZones(*engine_.groups()[i]);
    }
    if (state.currentGroup) makeOnlyActiveGroup(*state.currentGroup);
}

void CZSP::makeOnlyActiveGroup(std::int32_t index) {
    engine_.deactivateAllGroups();
    if (index < 0) return;
    engine_.activateGroup(engine_.groups()[static_cast<std::size_t>(index)].get());
    groupsChanged();
}

} // namespace zarno
