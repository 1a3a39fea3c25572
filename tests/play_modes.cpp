// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

enum { poly, mono, legato };

// Plays a ramp, so that each frame tells its position.
struct Solo : TestInstrument {
    Solo(int mode, float glideMs) {
        engine.settings().playMode = mode;
        engine.settings().glideTime = glideMs;
        engine.settings().quality = 0;
        const TestSample sample = TestSample::ramp(frames);
        ZoneRecord record = plainZone(sample);
        record.release = 50;
        addZone(addGroup(), sample, record);
    }

    static constexpr std::uint64_t frames = 1 << 18;

    double position() { return next() * double{frames}; }
    // Frames per sample, from two neighbours.
    double speed() {
        const double before = position();
        return position() - before;
    }
};

TEST(PlayModes, PolyNotesNeverGlide) {
    Solo t(poly, 100);
    t.noteOn(48);
    t.render(10);
    t.noteOff(48);
    t.render(5000);
    t.noteOn(60);
    EXPECT_NEAR(t.speed(), 1, 1e-3);
}

TEST(PlayModes, MonoReleasesWhatSoundsAndSlidesInFromTheLastKey) {
    Solo t(mono, 100);
    t.noteOn(48);
    t.render(10000);
    t.noteOn(60);
    t.render(1);
    EXPECT_EQ(t.engine.playingVoices(), 2); // the old note releases
    t.render(2999);
    EXPECT_EQ(t.engine.playingVoices(), 1);
    EXPECT_NEAR(t.speed(), 0.5 + 0.5 * 3000 / 4410, 1e-3);
    t.render(1410);
    EXPECT_NEAR(t.speed(), 1, 1e-3);
}

TEST(PlayModes, AStackInMonoReleasesItsOwnFirstZone) {
    TestInstrument t;
    t.engine.settings().playMode = mono;
    t.addLevel(0.25f);
    const TestSample sample = TestSample::level(0.5f);
    t.addZone(*t.engine.groups()[0], sample, plainZone(sample));
    t.noteOn(60);
    EXPECT_EQ(t.next(), 0.5f);
}

TEST(PlayModes, LegatoGoesOnInTheSampleAtTheNewPitch) {
    Solo t(legato, 0);
    t.noteOn(60);
    t.render(1000);
    t.noteOn(72);
    EXPECT_NEAR(t.position(), 1000, 0.1);
    EXPECT_NEAR(t.position(), 1002, 0.1);
    EXPECT_EQ(t.engine.playingVoices(), 1);
    t.noteOff(60); // the voice is the new key's now
    EXPECT_NEAR(t.position(), 1004, 0.1);
    t.noteOff(72);
    t.render(5000);
    t.noteOn(60);
    EXPECT_NEAR(t.position(), 0, 0.1); // nothing sounds: from the start
}

TEST(PlayModes, AGlideLastsItsTimeAtEveryRate) {
    for (const float rate : {44100.0f, 22050.0f, 96000.0f}) {
        Solo t(legato, 200);
        t.engine.setSampleRate(rate);
        t.noteOn(60);
        t.render(10);
        t.noteOn(72);
        const double unit = 44100.0 / rate;
        t.render(static_cast<int>(rate / 10));
        EXPECT_NEAR(t.speed() / unit, 1.5, 0.01) << rate;
        t.render(static_cast<int>(rate / 10));
        EXPECT_NEAR(t.speed() / unit, 2, 0.01) << rate;
        t.noteOn(48); // on from where it is, relative to the key it began with
        t.render(static_cast<int>(rate / 5) + 2);
        EXPECT_NEAR(t.speed() / unit, 0.5, 0.01) << rate;
    }
}

} // namespace
} // namespace zarno
