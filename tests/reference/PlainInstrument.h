// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineEvent.h"
#include "platform/Clock.h"
#include "tests/reference/PlainLfo.h"
#include "tests/reference/PlainReverb.h"
#include "tests/reference/PlainVoice.h"

#include <array>
#include <memory>
#include <vector>

namespace zarno {

// The whole engine in its plainest form, kept as the measure of the fast one: for each sample the events that
// are due, the modulators, every voice, reverb, clip. It plays the groups of another instrument, which must
// outlive it, from state of its own, and its output equals that instrument's bit for bit. One thread, in
// memory whole.
class PlainInstrument {
  public:
    using Groups = std::vector<std::unique_ptr<ZGroup>>;

    PlainInstrument(const Groups& groups, const InstrumentSettings& settings, const Clock& clock);

    void renderBlock(float* left, float* right, int numSamples);
    void postEvent(int type, int channel, int data1, int data2, std::uint32_t sampleOffset);
    void setPitchBend(float amount);
    void setSampleRate(double hertz);
    void applySettings();
    void prepareZones();
    void activateGroup(std::size_t index);
    void seedRandom(std::uint32_t seed) { random_.seed(seed); }

    InstrumentSettings& settings() { return state_.settings; }
    int playingVoices() const;

  private:
    struct Group {
        const ZGroup* source;
        std::vector<PlainZone> zones;
        int lastPlayed = -1;

        const GroupRecord& record() const { return source->record; }
    };

    void processEvents(int sample, bool isLast);
    void dispatch(const EngineEvent& event);
    void updateActiveGroups(const EngineEvent& event);
    void setActive(Group& group, bool active);
    void dealToGroup(Group& group, const EngineEvent& event);
    void startNoteInGroup(Group& group, int key, int velocity);
    void startZone(const PlainZone& zone, int key, int velocity, int channelTag);
    const PlainZone* selectZone(Group& group, int key, int velocity);
    PlainVoice* allocateVoice();
    PlainVoice* findVoiceForNoteOff(int key, int channelTag);
    void chokeExclusive(int id);
    void handleController(int number, int value, int channel);
    void stepBend();
    void stepExpression();
    void stepLfo();
    double renderedMs(std::int64_t sample) const;
    double lagMs() const { return blockStart_ - renderedMs(0); } // of rendered time after the clock

    const Clock& clock_;
    PlainState state_;
    std::vector<Group> groups_;
    std::vector<Group*> active_;
    std::vector<PlainVoice> voices_;
    PlainLfo lfo_;
    PlainReverb reverb_;
    ZRandom random_{0};
    std::vector<EngineEvent> pendingEvents_, activeEvents_;
    std::size_t nextEvent_ = 0;
    double blockStart_ = -1; // ms, below 0 before the first block
    double msBeforeThisRate_ = 0;
    std::int64_t samplesAtThisRate_ = 0, sample_ = 0; // before the block; of the event at hand, in the block
    std::array<int, 128> lastVelocity_, controllers_{};
    std::array<double, 128> noteOnRendered_, noteOnLag_{}; // ms
    int program_ = 0, bendRange_ = 2;
    bool pedalDown_ = false;
    float bendTarget_ = 1, expression_ = 1, expressionTarget_ = 1;
    PlainPan pan_;
};

} // namespace zarno
