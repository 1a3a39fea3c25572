// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/reference/PlainStream.h"
#include "tests/reference/PlainZone.h"

namespace zarno {

// What a voice sees of its instrument, at the sample being rendered.
struct PlainState {
    InstrumentSettings settings;
    double sampleRate = 44100.0;
    float killCoefficient = 0.02242f;
    float bend = 1.0f;
    bool pitchMoving = false;
    float lfoValue = 0.0f;
    int lastKey = 60;

    float lfoDepth() const { return finiteOr(settings.lfoDepth, 0); }
};

// One note, one frame at a time.
class PlainVoice {
  public:
    explicit PlainVoice(const PlainState& state)
        : state_(state) {}

    bool start(const PlainZone* zone, int key, int velocity, int channelTag);
    bool render(float& left, float& right); // false: not playing (any more), the frame is dropped

    void release() { releasing_ = releasing_ || playing_; }
    void kill();
    void cancelPending();
    void takeSampleRate(double previous);

    bool isPlaying() const { return playing_; }
    bool isReleasing() const { return releasing_; }
    bool isSustained() const { return sustained_; }
    void setSustained() { sustained_ = true; }
    int key() const { return key_; }
    int channelTag() const { return channelTag_; }
    const PlainZone* zone() const { return zone_; }
    bool pendingMatches(int key, int channelTag) const;

    double startTime = 0; // ms

  private:
    void startFresh(const PlainZone* zone, int key, int velocity);
    void startGlide(int key, bool fresh);
    void finish();
    void updateIncrement();
    void stepGlide();
    void stepEnvelope();
    void readInterpolated(float& left, float& right) const;
    float frame(std::int64_t index, std::int64_t tap, int channel) const;

    const PlainState& state_;
    const PlainZone* zone_ = nullptr;
    PlainStream stream_;
    bool playing_ = false, releasing_ = false, attacking_ = false, sustained_ = false, killing_ = false;
    bool depthWasOn_ = false; // the LFO depth was above 0 when the increment was made
    double position_ = 0, increment_ = 1, baseIncrement_ = 1;
    float pitchRatio_ = 1; // of key, root key and fine tune
    int key_ = 0, startKey_ = 0, channelTag_ = 0, quality_ = 2;
    float envelope_ = 0, velocityGain_ = 1;
    float glideCurrent_ = 1, glideTarget_ = 1, glideStep_ = 0, glideTime_ = 0;

    struct {
        const PlainZone* zone = nullptr;
        int key = 0, velocity = 0, channelTag = 0;
    } pending_;
};

} // namespace zarno
