// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace zarno {
namespace {

constexpr float rates[] = {22050, 32000, 44100, 48000, 88200, 96000, 192000};

// From the first to the last upward zero crossing.
double frequency(const std::vector<float>& wave, double rate) {
    double first = -1, last = -1;
    int periods = -1;
    for (std::size_t i = 1; i < wave.size(); ++i) {
        if (wave[i - 1] >= 0 || wave[i] < 0) continue;
        last = static_cast<double>(i) - wave[i] / (wave[i] - wave[i - 1]);
        if (++periods == 0) first = last;
    }
    return periods * rate / (last - first);
}

TEST(PitchAndRates, ANoteHasItsPitchAtEveryRate) {
    for (const double sampleRate : {44100.0, 48000.0, 22050.0})
        for (const float rate : rates) {
            TestInstrument t;
            t.engine.setSampleRate(rate);
            t.addZone(t.addGroup(), TestSample::sine(440, 60000, sampleRate));
            t.noteOn(60);
            const double hertz = frequency(t.render(static_cast<int>(rate / 2)).left, rate);
            EXPECT_NEAR(1200 * std::log2(hertz / 440), 0, 1) << sampleRate << " at " << rate;
        }
}

TEST(PitchAndRates, KeyRootAndFineTuneMoveThePitch) {
    TestInstrument t;
    const TestSample sample = TestSample::sine(440, 90000);
    ZoneRecord record = plainZone(sample);
    record.fineTune = -50;
    ZZone& zone = t.addZone(t.addGroup(), sample, record);
    const auto centsOf = [&](int key) {
        t.noteOn(key);
        const double hertz = frequency(t.render(20000).left, 44100);
        t.noteOff(key);
        t.render(1);
        return 1200 * std::log2(hertz / 440);
    };
    EXPECT_NEAR(centsOf(67), 650, 1);
    EXPECT_NEAR(centsOf(48), -1250, 1);
    EXPECT_NEAR(centsOf(30), -3050, 1); // beyond the table of two octaves
    zone.record.fixedPitch = 1;
    EXPECT_NEAR(centsOf(67), 0, 1);
}

// Seconds of attack, release and of a stolen note's fade.
std::vector<double> seconds(float rate) {
    TestInstrument t(1);
    t.engine.setSampleRate(rate);
    ZZone& zone = t.addLevel(1);
    zone.record.attack = 100;
    zone.record.release = 200;
    zone.record.loopMode = 2;
    t.noteOn(60);
    int attack = 0;
    while (attack < 200000 && t.next() < 1)
        ++attack;
    t.noteOff(60);
    const int release = t.framesUntilSilence();
    t.noteOn(60);
    t.render(static_cast<int>(rate / 2));
    t.noteOn(62);
    int fade = 0;
    for (float level = 1, last = 2; level < last && fade < 200000; ++fade) {
        last = level;
        level = t.next();
    }
    return {attack / double{rate}, release / double{rate}, fade / double{rate}};
}

TEST(PitchAndRates, EnvelopesLastTheSameSecondsAtEveryRate) {
    const std::vector<double> wanted = seconds(44100);
    EXPECT_NEAR(wanted[0], 0.0994, 0.001);
    EXPECT_NEAR(wanted[1], 0.1989, 0.001);
    for (const float rate : rates) {
        const std::vector<double> got = seconds(rate);
        for (std::size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(got[i], wanted[i], 0.001) << rate << ", " << i;
    }
}

TEST(PitchAndRates, ASoundingNoteKeepsItsPitchWhenTheRateChanges) {
    TestInstrument t;
    t.addZone(t.addGroup(), TestSample::sine(440, 90000));
    t.noteOn(60);
    t.render(10000);
    t.engine.setSampleRate(96000);
    EXPECT_NEAR(frequency(t.render(40000).left, 96000), 440, 0.2);
}

TEST(PitchAndRates, ALongSampleIsAsCleanAtItsEndAsAtItsStart) {
    constexpr std::uint64_t frames = 600 * 44100;
    constexpr double omega = 2 * std::numbers::pi * 440 / 44100;
    TestSample sample{std::make_shared<SampleMemory>()};
    ASSERT_TRUE(sample.memory->allocate(frames, 1, true));
    const auto noise = [&](std::uint64_t start) {
        for (std::uint64_t i = start; i < start + 9000; ++i)
            sample.memory->shorts()[i] =
                static_cast<std::int16_t>(std::lround(20000 * std::sin(omega * static_cast<double>(i))));
        TestInstrument t;
        t.engine.settings().quality = 1;
        ZoneRecord record = plainZone(sample);
        record.startFrame = start;
        t.addZone(t.addGroup(), sample, record);
        t.noteOn(61);
        const double step = static_cast<float>(std::exp2(1 / 12.0));
        double sum = 0;
        const Stereo out = t.render(8000);
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double at = static_cast<double>(start) + static_cast<double>(i) * step;
            const double error = out.left[i] - 20000 / 32768.0 * std::sin(omega * at);
            sum += error * error;
        }
        return 10 * std::log10(sum / static_cast<double>(out.size())); // dB
    };
    const double atStart = noise(100), atEnd = noise(frames - 9100);
    EXPECT_LT(atStart, -90);
    EXPECT_NEAR(atEnd, atStart, 1);
}

TEST(PitchAndRates, WholeFramesAreReadAsTheyAre) {
    for (const int quality : {0, 1, 2, 3}) {
        TestInstrument t;
        t.engine.settings().quality = quality;
        const TestSample sample = TestSample::made(50, 2, true, 22050, [](std::uint64_t n, int channel) {
            return (channel ? -1 : 1) * static_cast<double>(n % 7) / 8;
        });
        t.addZone(t.addGroup(), sample);
        t.noteOn(60);
        const Stereo out = t.render(90); // every other sample lies between two frames
        for (std::size_t i = 0; i < 90; i += 2) {
            EXPECT_EQ(out.left[i], sample.memory->shorts()[i] / 32768.0f) << quality << ", " << i;
            EXPECT_EQ(out.right[i], sample.memory->shorts()[i + 1] / 32768.0f) << quality << ", " << i;
            const bool between = out.left[i + 1] != 0 && out.right[i + 1] != 0;
            EXPECT_TRUE(quality < 3 ? between || i % 7 > 4 : !between) << quality << ", " << i;
        }
    }
}

TEST(PitchAndRates, ALoopGoesBackToItsStartAndDropsTheOvershoot) {
    TestInstrument t;
    const TestSample sample = TestSample::ramp(64);
    ZoneRecord record = plainZone(sample);
    record.loopMode = 2;
    record.loopStart = 4;
    record.loopEnd = 8;
    record.rootKey = 60;
    t.addZone(t.addGroup(), sample, record);
    const auto positions = [&](int key, int count) {
        t.noteOn(key);
        std::vector<float> frames;
        for (int i = 0; i < count; ++i)
            frames.push_back(t.next() * 64);
        t.noteOff(key);
        t.render(1);
        return frames;
    };
    // The frame that reaches the loop end exactly jumps, and the step is taken from the loop start.
    EXPECT_EQ(positions(60, 13), (std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7, 5, 6, 7, 5, 6}));
    EXPECT_EQ(positions(72, 8), (std::vector<float>{0, 2, 4, 6, 6, 6, 6, 6}));
}

} // namespace
} // namespace zarno
