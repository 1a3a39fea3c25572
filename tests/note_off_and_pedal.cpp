// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

TEST(NoteOffAndPedal, ANoteEndsWithItsKeyAndNoOther) {
    TestInstrument t;
    t.addLevel(0.25f);
    t.noteOn(60);
    t.noteOn(60);
    t.noteOn(64);
    EXPECT_EQ(t.next(), 0.75f);
    t.noteOff(62);
    EXPECT_EQ(t.next(), 0.75f);
    t.engine.postEvent(midi::noteOn, 0, 60, 0, 0); // velocity 0: both notes of the key
    t.next();
    EXPECT_EQ(t.next(), 0.25f);
}

TEST(NoteOffAndPedal, ThePedalHoldsNotesUntilItIsLifted) {
    TestInstrument t;
    t.addLevel(0.25f);
    t.noteOn(60);
    t.noteOn(64);
    t.controller(64, 64);
    t.noteOff(60);
    EXPECT_EQ(t.next(), 0.5f);
    t.noteOn(60);
    EXPECT_EQ(t.next(), 0.75f);
    t.controller(64, 63);
    t.next();
    EXPECT_EQ(t.next(), 0.5f); // the keys still down
}

TEST(NoteOffAndPedal, OneShotsPlayToTheirEnd) {
    TestInstrument t;
    ZZone& zone = t.addLevel(0.25f);
    zone.record.loopMode = 1;
    zone.record.endFrame = 10;
    t.controller(64, 127);
    t.noteOn(60);
    t.noteOff(60);
    t.controller(64, 0);
    EXPECT_EQ(t.framesUntilSilence(), 9);
}

TEST(NoteOffAndPedal, ChannelGroupsHearNoteOffsOfTheirChannelOnly) {
    TestInstrument t;
    GroupRecord group;
    group.trigger = 1;
    group.channel = 2;
    t.addLevel(0.25f, group);
    t.noteOn(60, 100, 0, 2);
    t.noteOff(60, 0, 3);
    EXPECT_EQ(t.next(), 0.25f);
    t.noteOff(60, 0, 2);
    EXPECT_EQ(t.next(), 0.0f);
}

// What a release group plays at the note-off of a note struck at 100, in velocity: its level is velocity /
// 127.
struct Damper {
    explicit Damper(float decayMs) {
        GroupRecord group;
        group.releaseTrigger = 1;
        group.releaseDecayTime = decayMs;
        t.engine.settings().velocityCurve = 2;
        t.engine.settings().velocityFloor = -127; // 1 dB a velocity
        t.addLevel(1, group).record.ignoreVelocity = 0;
    }

    // In velocities below 127; 999 for silence.
    int velocityAfter(double ms) {
        t.noteOn(60, 100);
        EXPECT_EQ(t.next(), 0.0f);
        t.clock.advance(ms - 1000 / 44100.0);
        t.noteOff(60);
        const float level = t.next();
        t.engine.requestStop();
        EXPECT_EQ(t.next(), 0.0f);
        return level == 0 ? 999 : 127 + static_cast<int>(std::lround(20 * std::log10(level)));
    }

    TestInstrument t;
};

TEST(NoteOffAndPedal, ReleaseNoiseFadesWithTheLengthOfTheNote) {
    Damper damper(1000);
    EXPECT_EQ(damper.velocityAfter(5), 99); // 99.5
    EXPECT_EQ(damper.velocityAfter(255), 74); // 74.5
    EXPECT_EQ(damper.velocityAfter(895), 10);
    EXPECT_EQ(damper.velocityAfter(1000), 0);
    EXPECT_EQ(damper.velocityAfter(5000), 0);
    EXPECT_EQ(Damper(0).velocityAfter(5000), 100);
}

TEST(NoteOffAndPedal, ReleaseNoiseKnowsNoNoteOffAndNoPedal) {
    Damper damper(0);
    TestInstrument& t = damper.t;
    t.noteOff(60);
    EXPECT_EQ(t.next(), 1.0f); // never struck: the key's first velocity, 127
    t.noteOff(60);
    EXPECT_GT(t.next(), 0.9f);
    EXPECT_EQ(t.engine.playingVoices(), 2); // a note-off ends neither
    t.controller(64, 127);
    t.noteOff(60);
    t.controller(64, 0);
    t.next();
    EXPECT_EQ(t.engine.playingVoices(), 2); // and the pedal keeps the damper off
}

} // namespace
} // namespace zarno
