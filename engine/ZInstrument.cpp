// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZInstrument.h"

#include "data/stream/ZDSVoice.h"
#include "engine/Tables.h"
#include "platform/DenormalGuard.h"
#include "platform/ThreadRole.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace zarno {
namespace {

std::uint32_t seedFromTime() {
    return static_cast<std::uint32_t>(std::chrono::system_clock::now().time_since_epoch().count());
}

float clipped(float sample) {
    if (sample > 1.0f) return 1.0f;
    if (sample < -1.0f) return -1.0f;
    return sample == sample ? sample : 0.0f;
}

bool isKeptByReset(int controller) {
    constexpr int kept[] = {6, 7, 8, 10, 11, 40, 43, 89, 121};
    return std::find(std::begin(kept), std::end(kept), controller) != std::end(kept);
}

} // namespace

ZInstrument::ZInstrument(const Clock& clock)
    : clock_(clock)
    , streams_(std::make_shared<StreamServer>(diskThread_.event(), clock))
    , random_(seedFromTime())
    , dispatcher_({settings_, context_, modulation_, pool_, random_}, groups_) {
    dispatcher_.applySettings = [this] { applySettings(); };
    dispatcher_.resetControllers = [this](int channel) { resetControllers(channel); };
    dispatcher_.activeGroups().onChange = [this] {
        publishCurrentGroup();
        if (delegate_ != nullptr) delegate_->groupsChanged();
    };
    const thread::Acts asLoading(thread::loading); // nobody else knows this instrument yet
    activeEvents_.reserve(EventQueue::ringSize);
    rebuildPool();
    diskThread_.add(streams_);
}

ZInstrument::~ZInstrument() {
    shuttingDown_.store(true, std::memory_order_release);
    streams_->pause();
    diskThread_.remove(*streams_);
}

void ZInstrument::postEvent(int type, int channel, int data1, int data2, std::uint32_t sampleOffset) {
    if (sampleOffset == immediateOffset) {
        // Milliseconds divided by a rate: 0 for 44 seconds. Meant as "now", and kept so on purpose.
        const double elapsed = clock_.nowMs() - blockStart_.load(std::memory_order_relaxed);
        sampleOffset = elapsed > 0.0 ? static_cast<std::uint32_t>(std::min(elapsed / 44100.0, 4e9)) : 0;
    }
    queue_.push({static_cast<std::uint8_t>((type & 0xF0) | (channel & 0x0F)),
                 static_cast<std::uint8_t>(data1 & 0x7F), static_cast<std::uint8_t>(data2 & 0x7F),
                 sampleOffset});
}

void ZInstrument::setSampleRate(float hertz) {
    const bool usable = std::isfinite(hertz) && hertz >= 1000.0f && hertz <= 1e6f;
    requestedRate_.store(usable ? hertz : 44100.0f, std::memory_order_relaxed);
}

void ZInstrument::applySampleRate() {
    const double rate = requestedRate_.load(std::memory_order_relaxed);
    if (rate == context_.sampleRate) return;
    const double previous = context_.sampleRate;
    msBeforeThisRate_ = renderedMs();
    samplesAtThisRate_ = 0;
    context_.sampleRate = rate;
    context_.killCoefficient = killCoefficientAt(rate);
    ++context_.rateGeneration;
    modulation_.setSampleRate(rate);
    reverb_.setSampleRate(rate);
    for (const auto& voice : pool_.voices())
        voice->sampleRateChanged(previous);
}

void ZInstrument::takeRequests() {
    applySampleRate();
    if (stopRequested_.exchange(false, std::memory_order_acquire)) pool_.stopAll();
    if (releaseRequested_.exchange(false, std::memory_order_acquire)) dispatcher_.releaseAll();
    if (applyRequested_.exchange(false, std::memory_order_acquire)) applySettings();
    // Published before the request is taken back, so that currentGroupIndex never tells the former group.
    if (groupsRequested_.load(std::memory_order_acquire))
        currentGroup_.store(requestedGroup_.load(std::memory_order_relaxed), std::memory_order_release);
    if (groupsRequested_.exchange(false, std::memory_order_acq_rel)) activateRequestedGroups();
}

int ZInstrument::currentGroupIndex() const {
    const bool waits = groupsRequested_.load(std::memory_order_acquire);
    return (waits ? requestedGroup_ : currentGroup_).load(std::memory_order_relaxed);
}

void ZInstrument::requestActiveGroups(const std::vector<int>& indices) {
    thread::mustNotBe(thread::audio | thread::disk);
    int first = -1;
    for (int i = 0; i < static_cast<int>(groups_.size()); ++i) {
        const bool wanted = std::find(indices.begin(), indices.end(), i) != indices.end();
        groups_[static_cast<std::size_t>(i)]->wanted.store(wanted, std::memory_order_relaxed);
        if (wanted && first < 0) first = i;
    }
    requestedGroup_.store(first, std::memory_order_relaxed);
    groupsRequested_.store(true, std::memory_order_release);
}

// A request made meanwhile is seen in part, and whole at the next block.
void ZInstrument::activateRequestedGroups() {
    dispatcher_.activeGroups().deactivateAll();
    for (const auto& group : groups_)
        if (group->wanted.load(std::memory_order_relaxed)) activateGroup(group.get());
    publishCurrentGroup();
}

void ZInstrument::beginBlock(int numSamples) {
    blockStart_.store(clock_.nowMs(), std::memory_order_relaxed);
    blockIsOffline_ = isOffline();
    streams_->beginBlock({blockIsOffline_ || alwaysAwaitBuffers_, renderedMs(),
                          numSamples * 1000.0 / context_.sampleRate});
    queue_.moveTo(activeEvents_);
    nextEvent_ = 0;
}

// Counted in samples, so that a moment has the same time whatever blocks came before it.
double ZInstrument::renderedMs(int sample) const {
    return msBeforeThisRate_ +
           static_cast<double>(samplesAtThisRate_ + sample) * 1000.0 / context_.sampleRate;
}

NoteTime ZInstrument::eventTime(int sample) const {
    const double lagMs = blockIsOffline_ ? std::numeric_limits<double>::quiet_NaN()
                                         : blockStart_.load(std::memory_order_relaxed) - renderedMs();
    return {renderedMs(sample), lagMs};
}

void ZInstrument::renderBlock(float** outputs, int numOutputs, int numSamples) {
    thread::mustBe(thread::audio);
    const thread::Acts asAudio(thread::audio);
    for (int i = 0; i < numOutputs; ++i)
        if (outputs[i] != nullptr) std::fill_n(outputs[i], std::max(numSamples, 0), 0.0f);
    if (shuttingDown_.load(std::memory_order_acquire) || numSamples <= 0) return;

    const DenormalGuard noDenormals;
    takeRequests();
    beginBlock(numSamples);
    for (int sample = 0; sample < numSamples;) {
        dispatchDue(sample, sample == numSamples - 1);
        const int frames = segmentEnd(sample, numSamples) - sample;
        float mix[2][ModulationSegment::maxFrames];
        renderSegment(frames, mix[0], mix[1]);
        for (int channel = 0; channel < std::min(numOutputs, 2); ++channel)
            if (outputs[channel] != nullptr) std::copy_n(mix[channel], frames, outputs[channel] + sample);
        sample += frames;
    }
    activeEvents_.clear();
    samplesAtThisRate_ += numSamples;
    playingVoices_.store(pool_.playingCount(), std::memory_order_relaxed);
}

// Events are taken in the order in which they came: one that is not due yet holds back those behind it. At
// the last sample of a block all are due.
void ZInstrument::dispatchDue(int sample, bool isLast) {
    while (nextEvent_ < activeEvents_.size()) {
        const EngineEvent event = activeEvents_[nextEvent_];
        if (event.sampleOffset > static_cast<std::uint32_t>(sample) && !isLast) return;
        dispatcher_.dispatch(event, eventTime(sample));
        ++nextEvent_;
    }
}

int ZInstrument::segmentEnd(int sample, int numSamples) const {
    int end = numSamples;
    if (nextEvent_ < activeEvents_.size()) {
        const auto last = static_cast<std::uint32_t>(numSamples - 1);
        end = static_cast<int>(std::min(activeEvents_[nextEvent_].sampleOffset, last));
    }
    return std::min(end, sample + ModulationSegment::maxFrames);
}

void ZInstrument::renderSegment(int frames, float* left, float* right) {
    context_.takeSettings();
    modulation_.fill(segment_, frames);
    std::fill_n(left, frames, 0.0f);
    std::fill_n(right, frames, 0.0f);
    renderer_.render(pool_, segment_, left, right);
    const float send = finiteOr(settings_.reverbSend, 0.0f);
    // Not run while the send is 0: the tail stands still and goes on later, on purpose.
    if (send > 0.0f) reverb_.process(left, right, frames, send);
    std::transform(left, left + frames, left, clipped);
    std::transform(right, right + frames, right, clipped);
}

void ZInstrument::applySettings() {
    thread::mustBe(thread::audio | thread::loading);
    modulation_.applySettings();
    if (delegate_ != nullptr) delegate_->settingsChanged();
}

void ZInstrument::resetSettings() {
    thread::mustBe(thread::loading | thread::message);
    const InstrumentSettings defaults;
    settings_.quality = defaults.quality.load();
    settings_.velocityCurve = defaults.velocityCurve.load();
    settings_.lfoRate = defaults.lfoRate.load();
    settings_.lfoDestination = defaults.lfoDestination.load();
    settings_.lfoDepthSource = defaults.lfoDepthSource.load();
    settings_.volume = defaults.volume.load();
    settings_.pan = defaults.pan.load();
    settings_.lfoDepth = defaults.lfoDepth.load();
    settings_.reverbSend = defaults.reverbSend.load();
    settings_.lfoShape = defaults.lfoShape.load();
    settings_.velocityFloor = defaults.velocityFloor.load();
    settings_.velocitySpanOffset = defaults.velocitySpanOffset.load();
    texts_.name = InstrumentTexts{}.name;
}

void ZInstrument::resetControllers(int channel) {
    for (int number = 0; number < 128; ++number)
        if (!isKeptByReset(number)) postEvent(midi::controller, channel, number, 0, immediateOffset);
}

void ZInstrument::deactivateAllGroups() {
    thread::mustBe(thread::audio | thread::loading);
    dispatcher_.activeGroups().deactivateAll();
    publishCurrentGroup();
}

void ZInstrument::publishCurrentGroup() {
    const auto& active = activeGroups();
    currentGroup_.store(active.empty() ? -1 : static_cast<int>(active.front()->place()),
                        std::memory_order_relaxed);
}

ZGroup& ZInstrument::createGroup(std::string name) {
    thread::mustBe(thread::loading);
    groups_.push_back(std::make_unique<ZGroup>(std::move(name)));
    dispatcher_.activeGroups().adopt();
    return *groups_.back();
}

void ZInstrument::clear() {
    thread::mustBe(thread::loading);
    const StreamServer::Pause noReads(*streams_);
    InstrumentContents former;
    takeOut(former);
}

// Groups and texts go to `former`.
void ZInstrument::takeOut(InstrumentContents& former) {
    pool_.stopAll();
    deactivateAllGroups();
    groupsRequested_.store(false, std::memory_order_relaxed);
    queue_.clear();
    dispatcher_.liftPedal();
    for (const auto& group : groups_)
        group->join(nullptr, 0);
    former.groups = std::exchange(groups_, {});
    dispatcher_.activeGroups().adopt();
    former.texts = std::exchange(texts_, {});
    streams_->zonesChange();
    playingVoices_.store(0, std::memory_order_relaxed);
}

void ZInstrument::exchange(InstrumentContents& contents) {
    thread::mustBe(thread::loading);
    const StreamServer::Pause noReads(*streams_);
    InstrumentContents former;
    takeOut(former);
    copySettings(former.settings, settings_);
    copySettings(settings_, contents.settings);
    std::swap(former, contents);
    rebuildPool();
    texts_ = std::move(former.texts);
    groups_ = std::move(former.groups);
    copySettings(fileValues_.settings, settings_);
    fileValues_.groups.clear();
    for (const auto& group : groups_)
        fileValues_.groups.push_back(group->record);
    dispatcher_.activeGroups().adopt();
    dispatcher_.activeGroups().takeChanges();
}

void ZInstrument::rebuildPool() {
    thread::mustBe(thread::loading);
    const StreamServer::Pause noReads(*streams_);
    pool_.stopAll();
    pool_.fill({});
    pool_.fill(makeVoices(settings_, context_, *streams_));
}

void ZInstrument::setLoading(bool loading) {
    thread::mustBe(thread::loading);
    if (loading_.exchange(loading, std::memory_order_acq_rel) == loading) return;
    if (loading)
        streams_->pause();
    else
        streams_->resume();
}

} // namespace zarno
