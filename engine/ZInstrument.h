// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/DiskThread.h"
#include "data/stream/StreamServer.h"
#include "engine/EventDispatcher.h"
#include "engine/EventQueue.h"
#include "engine/InstrumentContents.h"
#include "engine/NoteTime.h"
#include "engine/VoiceRenderer.h"
#include "engine/ZReverb.h"
#include "engine/ZSEDelegate.h"
#include "platform/Clock.h"

#include <atomic>
#include <limits>

namespace zarno {

// The playable instrument: groups of zones, a pool of voices, one LFO, one reverb send and a block of
// settings. Each operation says which thread may call it:
//   [any]      any thread, at any time
//   [audio]    the thread that renders
//   [loading]  while the caller keeps the audio thread out (a load, construction, tests)
class ZInstrument final {
  public:
    // The clock gives note times and the host's lead over real time; it must outlive the instrument.
    explicit ZInstrument(const Clock& clock = systemClock());
    ~ZInstrument();
    ZInstrument(const ZInstrument&) = delete;
    ZInstrument& operator=(const ZInstrument&) = delete;

    // [audio] Renders the next numSamples into outputs 0 and 1 (after clearing all numOutputs), with every
    // queued event at its sample. Output pointers may be null. Samples are clipped to -1..+1 and finite.
    void renderBlock(float** outputs, int numOutputs, int numSamples);

    // [any] Queues one short message for the coming block. type: status & 0xF0, channel 0..15. An offset
    // beyond the block takes effect at the block's last sample.
    void postEvent(int type, int channel, int data1, int data2, std::uint32_t sampleOffset);

    // [any] -1..+1 of the bend range; acts at the next render, outside the event queue.
    void setPitchBend(float amount) { modulation_.setBendAmount(amount); }

    // [any] The host's rate in Hz. The one place where the rate enters; in force from the next render on,
    // for sounding voices too. Unusable values count as 44100.
    void setSampleRate(float hertz);
    double sampleRate() const { return requestedRate_.load(std::memory_order_relaxed); }

    // [any] What the host says about the coming blocks. Offline, note times follow the rendered samples alone
    // and voices wait for the disk, so that a bounce is the same every time. A host that bounces without
    // saying so gets the same: the larger of clock and rendered time counts, and voices wait for as long as
    // the host is ahead of real time.
    void setOffline(bool offline) { offline_.store(offline, std::memory_order_relaxed); }
    bool isOffline() const { return offline_.load(std::memory_order_relaxed); }

    // [any] All voices stop at once, and nothing that waits begins; at the next render.
    void requestStop() { stopRequested_.store(true, std::memory_order_release); }
    // [any] Every playing voice is released and the pedal goes up, at the next render. No event: triggers are
    // not evaluated, so the active groups stay.
    void requestRelease() { releaseRequested_.store(true, std::memory_order_release); }
    // [any] applySettings at the next render.
    void requestApplySettings() { applyRequested_.store(true, std::memory_order_release); }
    // [one thread, while no load runs] These groups (indices, in instrument order) become the active ones at
    // the next render, whatever their triggers; the next event may have triggers change that again.
    void requestActiveGroups(const std::vector<int>& indices);

    // [audio, loading] Takes volume, pan and LFO over from the settings and tells the delegate.
    void applySettings();
    // [loading; one more thread that keeps loads out] Sound settings and name back to their defaults.
    void resetSettings();
    // [any, while no load runs] What the file gave that was loaded last.
    const FileValues& fileValues() const { return fileValues_; }
    // [any] Posts a zero for every controller that a reset touches.
    void resetControllers(int channel);

    // [any] Single fields; applySettings says when groups of them take effect.
    InstrumentSettings& settings() { return settings_; }
    const InstrumentSettings& settings() const { return settings_; }

    // [any, while no load runs] Groups in file order.
    const std::vector<std::unique_ptr<ZGroup>>& groups() const { return groups_; }
    // [any] What the last event of each controller, and the last bend of any kind (-1..+1), said.
    int controllerValue(int number) const { return dispatcher_.controllerValue(number); }
    float pitchBend() const { return modulation_.bendAmount(); }
    // [any] Index of the first active group, -1 when none is; as requested, while a request waits for a render.
    int currentGroupIndex() const;
    // [audio, loading]
    const std::vector<ZGroup*>& activeGroups() const { return dispatcher_.activeGroups().list(); }
    void activateGroup(ZGroup* group) { dispatcher_.activeGroups().activate(group); }
    void deactivateGroup(ZGroup* group) { dispatcher_.activeGroups().deactivate(group); }
    void deactivateAllGroups();

    // [any] Values derived from the group's record are computed anew before they are used next.
    void prepareZones(ZGroup& group) { group.touch(); }

    // [loading] Takes over what a loader has read: settings, texts, groups, and a pool as the settings want
    // it. No group is active. What the instrument held is left in `contents`, for the caller to let go of
    // where that may take its time. Throws std::bad_alloc, and is empty then.
    void exchange(InstrumentContents& contents);

    // [loading] Filling by hand, in this order: clear, write settings() and texts(), rebuildPool,
    // createGroup...
    void clear();
    void rebuildPool();
    ZGroup& createGroup(std::string name);
    InstrumentTexts& texts() { return texts_; }
    const InstrumentTexts& texts() const { return texts_; }

    // [loading] Set before the first load; null for none.
    void setDelegate(ZSEDelegate* delegate) { delegate_ = delegate; }
    ZSEDelegate* delegate() const { return delegate_; }

    // [loading] The busy mark, set while a load replaces the contents: nothing else may look into groups and
    // zones then. Setting it returns when the disk thread is outside this instrument, or hangs in a read and
    // is left behind.
    void setLoading(bool loading);
    // [any]
    bool isLoading() const { return loading_.load(std::memory_order_acquire); }

    // [any] Playing voices at the end of the last block.
    int playingVoices() const { return playingVoices_.load(std::memory_order_relaxed); }
    // [any] How streaming goes.
    StreamStats streamStats() const { return streams_->stats(); }

    // [any] While one lives, no voice waits for the disk, and a wait at hand ends: for who waits for the
    // audio thread of a bounce.
    class Hurry {
      public:
        explicit Hurry(ZInstrument& instrument)
            : streams_(*instrument.streams_) {
            streams_.hurry();
        }
        ~Hurry() { streams_.takeTime(); }
        Hurry(const Hurry&) = delete;
        Hurry& operator=(const Hurry&) = delete;

      private:
        StreamServer& streams_;
    };

    // [audio, loading] Makes random choices repeatable.
    void seedRandom(std::uint32_t seed) { random_.seed(seed); }

    // [audio, loading] For tests and benchmarks: other inner loops; null renders every frame by the voices
    // themselves.
    void useKernels(const VoiceKernels* kernels) { renderer_.useKernels(kernels); }

    // [audio, loading] For tests and benchmarks: voices wait for their buffers in real time, too.
    void alwaysAwaitBuffers(bool always) { alwaysAwaitBuffers_ = always; }

    // [audio, loading]
    const VoicePool& pool() const { return pool_; }

  private:
    void takeOut(InstrumentContents& former);
    void takeRequests();
    void activateRequestedGroups();
    void applySampleRate();
    void beginBlock(int numSamples);
    void dispatchDue(int sample, bool isLast);
    int segmentEnd(int sample, int numSamples) const;
    void renderSegment(int frames, float* left, float* right);
    double renderedMs(int sample = 0) const; // length of all blocks so far, and of sample more frames
    NoteTime eventTime(int sample) const;
    void publishCurrentGroup();

    const Clock& clock_;
    InstrumentSettings settings_;
    InstrumentTexts texts_;
    FileValues fileValues_;
    std::vector<std::unique_ptr<ZGroup>> groups_;
    PlayContext context_{settings_};
    Modulation modulation_{settings_, context_};
    DiskThread diskThread_;
    const std::shared_ptr<StreamServer> streams_;
    VoicePool pool_;
    ZRandom random_;
    EventDispatcher dispatcher_;
    VoiceRenderer renderer_{modulation_};
    ModulationSegment segment_;
    ZReverb reverb_;
    ZSEDelegate* delegate_ = nullptr;

    EventQueue queue_;
    std::vector<EngineEvent> activeEvents_;
    std::size_t nextEvent_ = 0;
    // Clock ms; not a number before the first block, when every immediate event is due at its start.
    std::atomic<double> blockStart_{std::numeric_limits<double>::quiet_NaN()};
    std::int64_t samplesAtThisRate_ = 0; // all blocks since the rate changed
    double msBeforeThisRate_ = 0.0;      // length of all blocks until then
    bool blockIsOffline_ = false;
    bool alwaysAwaitBuffers_ = false;

    std::atomic<float> requestedRate_{44100.0f};
    std::atomic<bool> offline_{false}, stopRequested_{false}, releaseRequested_{false}, applyRequested_{false},
        groupsRequested_{false}, loading_{false}, shuttingDown_{false};
    std::atomic<int> currentGroup_{-1}, requestedGroup_{-1}, playingVoices_{0};
};

} // namespace zarno
