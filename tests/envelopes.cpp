// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

struct Envelope {
    float attack = 0, decay = 0, sustain = 0, release = 0;
};

void shape(ZZone& zone, Envelope e) {
    zone.record.attack = e.attack;
    zone.record.decay = e.decay;
    zone.record.sustain = e.sustain;
    zone.record.release = e.release;
}

TEST(Envelopes, AttackTakesItsTimeAndReachesFullLevel) {
    TestInstrument t;
    shape(t.addLevel(1), {.attack = 100});
    t.noteOn(60);
    const Stereo out = t.render(6000);
    int full = 0;
    while (full < 5999 && out.left[static_cast<std::size_t>(full)] < 1)
        ++full;
    EXPECT_NEAR(full, 4410 * std::log(1.5873016 / 0.5873016), 3);
    for (std::size_t i = 1; i < out.size(); ++i)
        ASSERT_GE(out.left[i], out.left[i - 1]);
    EXPECT_EQ(out.left.back(), 1);
}

TEST(Envelopes, WithoutDecayTheLevelStaysWhateverTheSustain) {
    TestInstrument t;
    shape(t.addLevel(1), {.sustain = -40});
    t.noteOn(60);
    EXPECT_EQ(t.render(20000).left.back(), 1);
}

TEST(Envelopes, DecayApproachesTheSustainLevel) {
    TestInstrument t;
    shape(t.addLevel(1), {.decay = 50, .sustain = -20});
    t.noteOn(60);
    const Stereo out = t.render(44100);
    EXPECT_NEAR(out.left[2205], 0.1 + 0.9 * std::exp(-1), 1e-3); // one time constant
    EXPECT_NEAR(out.left.back(), 0.1f, 1e-5);
}

TEST(Envelopes, ReleaseEndsInFiniteTimeAndOfNoTimeAtOnce) {
    TestInstrument t;
    ZZone& zone = t.addLevel(1);
    shape(zone, {.release = 100});
    t.noteOn(60);
    t.noteOff(60, 1);
    t.render(2);
    EXPECT_NEAR(t.framesUntilSilence(), 4410 * std::log(1.5873016 / 0.5873016), 3);
    EXPECT_EQ(t.engine.playingVoices(), 0);

    shape(zone, {});
    t.engine.prepareZones(*zone.group);
    t.noteOn(60);
    t.noteOff(60, 1);
    const Stereo out = t.render(3);
    EXPECT_EQ(out.left, (std::vector<float>{1, 0, 0}));
    EXPECT_EQ(t.engine.playingVoices(), 0);
}

TEST(Envelopes, TheSampleEndsTheNoteEvenInItsAttack) {
    TestInstrument t;
    ZZone& zone = t.addLevel(1);
    shape(zone, {.attack = 1000});
    zone.record.endFrame = 10;
    t.noteOn(60);
    t.render(1);
    // The frame whose advance reaches the end is not heard any more.
    EXPECT_EQ(t.framesUntilSilence(), 8);
    EXPECT_EQ(t.engine.playingVoices(), 0);
}

TEST(Envelopes, GroupTimesAndVolumeAddToTheZones) {
    TestInstrument t;
    ZZone& zone = t.addLevel(1);
    shape(zone, {.attack = 40});
    zone.record.volume = -6;
    zone.record.pan = 0.25f;
    zone.group->record.attack = -50.0f; // below 0 together: none
    zone.group->record.volume = -14.0f;
    t.noteOn(60);
    Stereo out = t.render(1);
    EXPECT_FLOAT_EQ(out.right[0], 0.1f);
    EXPECT_FLOAT_EQ(out.left[0], 0.075f);
    for (const float volume : {-29.9f, -30.0f}) {
        zone.group->record.volume = volume;
        t.engine.prepareZones(*zone.group);
        EXPECT_EQ(t.next() > 0, volume > -30) << volume; // sounding notes follow
    }
}

} // namespace
} // namespace zarno
