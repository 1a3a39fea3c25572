// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/FrameWindow.h"
#include "engine/PlayContext.h"
#include "engine/ZZone.h"

namespace zarno {

// One note of one zone: pitch, envelope, level, loop and end. The plain voice reads a sample that is whole in
// memory; a streaming voice derives from it and replaces where frames come from. render() is the exact,
// sample-by-sample form; VoiceRenderer does the same work for whole segments where it knows that nothing
// special happens, and falls back to render() for the frames where something does.
//
// All operations: audio thread. The order of the virtual operations is fixed.
class ZVoice {
  public:
    explicit ZVoice(const PlayContext& context)
        : context_(context) {}
    virtual ~ZVoice() = default;

    // Begins the zone, or continues the sounding one with another key (legato). False when there is nothing
    // to play, or when the voice is still fading out: then the start is kept and happens when it has faded.
    virtual bool start(ZZone* zone, int key, int velocity, int channelTag);

    // One output frame. False when the voice has ended: the frame is not to be mixed.
    virtual bool render(float& left, float& right);

    virtual ZZone* getZone() const { return zone_; }
    virtual bool isPlaying() const { return playing_; }
    virtual bool isReleasing() const { return releasing_; }
    virtual void release();
    virtual void finish();        // ends the note now; the kept start, if any, happens
    virtual void kill();          // fast fade; a second call ends the note at once
    virtual void cancelPending(); // forgets the kept start and the fast fade
    virtual int getKey() const { return key_; }
    virtual int getChannel() const { return channelTag_; }     // 0 any, else MIDI channel + 1
    virtual double getStartTime() const { return startTime_; } // ms
    virtual void setStartTime(double milliseconds) { startTime_ = milliseconds; }
    virtual bool isSustained() const { return sustained_; }
    virtual void setSustained(bool sustained) { sustained_ = sustained; }
    virtual bool pendingMatches(int key, int channelTag) const;
    virtual void stepEnvelope();
    virtual void readInterpolated(double position, float& left, float& right);
    virtual void readFrame(std::int64_t index, float& left, float& right);

    // The frames that can be read from the present state on without any care; see FrameWindow.
    virtual FrameWindow frameWindow() const;

    // Ends the note at once and starts nothing.
    void stop();

    // Takes the zone's gains and coefficients over again, in case its group's values have changed.
    void takeGains();

    // Makes everything that was derived from the sample rate fit the context's rate again.
    void sampleRateChanged(double previousRate);

  protected:
    // Moves on by one frame and ends the note where its sample ends.
    virtual void advance();

    const PlayContext& context_;
    ZZone* zone_ = nullptr;
    double position_ = 0.0;  // frames
    double increment_ = 0.0; // frames per output sample
    bool playing_ = false;
    bool jumpsBack_ = false; // the position goes back to the loop start at the loop end
    std::int32_t quality_ = 2;
    int startKey_ = 60;
    int key_ = 60;

  private:
    friend class VoiceRenderer;
    friend class VoiceRow;

    struct PendingStart {
        ZZone* zone = nullptr;
        int key = 0, velocity = 0, channelTag = 0;
    };

    void startFresh(ZZone& zone, int key, int velocity);
    void setBaseIncrement();
    void startGlide(bool fresh, int key);
    void updateIncrement();
    void followModulation();

    double baseIncrement_ = 0.0;
    float envelope_ = 0.0f;
    float velocityGain_ = 1.0f;
    float leftGain_ = 1.0f, rightGain_ = 1.0f; // zone gain x pan x velocity
    ZoneGains gains_;
    float glideTime_ = 0.0f; // ms
    float glideCurrent_ = 1.0f, glideTarget_ = 1.0f, glideStep_ = 0.0f;
    double startTime_ = 0.0;
    PendingStart pending_;
    int channelTag_ = 0;
    bool releasing_ = false, attacking_ = false, sustained_ = false, killing_ = false;
    bool detuned_ = false; // the increment holds a share of the LFO
};

} // namespace zarno
