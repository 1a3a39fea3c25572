// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zarno {
namespace {

constexpr int fadeFrames = 44; // of 0.02242 a sample, from full level to 0

float loudest(const Stereo& sound) {
    return *std::ranges::max_element(sound.left);
}

// Every key of 60..63 at a level of its own: 1/64, 1/16, 1/4, 1.
struct Keys : TestInstrument {
    explicit Keys(int polyphony)
        : TestInstrument(polyphony) {
        ZGroup& group = addGroup();
        for (int key = 60; key < 64; ++key) {
            const TestSample sample =
                TestSample::level(static_cast<float>(1 << (2 * (key - 60))) / 64, 100000);
            ZoneRecord record = plainZone(sample);
            record.fixedPitch = 1;
            record.lowKey = record.highKey = key;
            record.release = 500;
            addZone(group, sample, record);
        }
    }

    static float level(int key) { return static_cast<float>(1 << (2 * (key - 60))) / 64; }

    void play(int key) {
        noteOn(key);
        clock.advance(1);
        render(1);
    }
};

TEST(StolenNotes, TheOldestFadesQuicklyBeforeTheNewOneBegins) {
    Keys t(2);
    t.play(62);
    t.play(60);
    t.noteOn(61);
    const Stereo out = t.render(fadeFrames + 10);
    EXPECT_EQ(t.engine.playingVoices(), 2);
    for (std::size_t i = 1; i < fadeFrames - 1; ++i) {
        ASSERT_LT(out.left[i], out.left[i - 1]) << i;
        ASSERT_GT(out.left[i], out.left[i - 1] - 0.01f) << i;
    }
    EXPECT_EQ(out.left.back(), t.level(60) + t.level(61));
}

TEST(StolenNotes, ANoteReleasedBeforeItsVoiceIsFreeNeverSounds) {
    Keys t(1);
    t.play(62);
    t.play(63);
    t.noteOff(63);
    EXPECT_LE(loudest(t.render(40000)), t.level(62));
    EXPECT_EQ(t.engine.playingVoices(), 0);
}

TEST(StolenNotes, OfSeveralNotesThatWaitTheNewestSounds) {
    Keys t(1);
    t.play(61);
    t.play(62);
    t.play(60);
    t.play(63);
    EXPECT_EQ(t.render(fadeFrames + 5).left.back(), t.level(63));
    t.noteOff(62); // long gone
    EXPECT_EQ(t.next(), t.level(63));
}

TEST(StolenNotes, NoNoteBeginsAfterAPanic) {
    for (const int panic : {120, 123}) {
        Keys t(1);
        t.play(62);
        t.play(63);
        t.controller(panic, 0);
        EXPECT_LE(loudest(t.render(40000)), t.level(62)) << panic;
        EXPECT_EQ(t.engine.playingVoices(), 0) << panic;
    }
    Keys t(1);
    t.play(62);
    t.play(63);
    t.engine.requestStop();
    EXPECT_EQ(t.next(), 0.0f);
    EXPECT_EQ(loudest(t.render(1000)), 0.0f);
}

TEST(StolenNotes, NotesOfOneExclusiveIdCutEachOther) {
    Keys t(8);
    const auto& zones = t.engine.groups()[0]->zones();
    zones[1]->record.exclusiveId = zones[2]->record.exclusiveId = 7;
    t.play(60);
    t.play(61);
    t.play(62);
    const float sum = t.level(60) + t.level(62);
    EXPECT_GT(t.next(), sum); // the cut note is fading
    EXPECT_EQ(t.render(fadeFrames + 5).left.back(), sum);
    t.play(62); // itself, too
    EXPECT_EQ(t.render(fadeFrames + 5).left.back(), sum);
}

TEST(StolenNotes, FadesAreNoSlowerForANoteWithoutRelease) {
    Keys t(1);
    t.engine.groups()[0]->zones()[3]->record.release = 0;
    t.play(63);
    t.play(60);
    const Stereo out = t.render(fadeFrames + 5);
    for (std::size_t i = 1; i < out.size(); ++i)
        ASSERT_GT(out.left[i], out.left[i - 1] - 0.04f) << i;
    EXPECT_EQ(out.left.back(), t.level(60));
}

TEST(StolenNotes, ThePoolIsAsLargeAsTheRecordSays) {
    for (const auto& [polyphony, voices] : {std::pair{3, 3}, {0, 1}, {-7, 1}, {5000, 1024}}) {
        TestInstrument t(polyphony);
        EXPECT_EQ(t.engine.pool().voices().size(), static_cast<std::size_t>(voices));
        EXPECT_EQ(t.engine.settings().polyphony, polyphony);
    }
}

} // namespace
} // namespace zarno
