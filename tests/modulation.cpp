// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {
namespace {

constexpr int toExpression = 2, toPan = 3;
constexpr int fromNone = 0, fromModWheel = 1, fromAfterTouch = 2, fromVelocity = 3;

// One table entry a sample.
constexpr float entryRate = 44100.0f / 256;

// Plays a ramp, so that the step from one frame to the next tells the pitch.
struct Ramp : TestInstrument {
    explicit Ramp(float lfoRate = entryRate, int shape = 3) {
        engine.settings().lfoRate = lfoRate;
        engine.settings().lfoShape = shape;
        engine.settings().quality = 0;
        engine.applySettings();
        addZone(addGroup(), TestSample::ramp(1 << 18));
    }

    // Frames per sample, of the advance behind the next sample.
    double speed() {
        const double before = next();
        const double after = next();
        return (after - before) * (1 << 18);
    }
};

TEST(Modulation, ABendMovesByAHundredthASampleToItsPlace) {
    Ramp t;
    t.noteOn(60);
    t.bend(16383);
    const double full = std::exp2(std::trunc(2 * 0.99988 * 100) / 1200);
    EXPECT_NEAR(t.speed(), 1.01, 1e-3);
    EXPECT_NEAR(t.speed(), 1.03, 1e-3);
    t.render(20);
    EXPECT_NEAR(t.speed(), full, 1e-4);
    t.bend(0);
    t.render(40);
    EXPECT_NEAR(t.speed(), std::exp2(-2 / 12.0), 1e-4);
    t.bend(8192);
    t.render(40);
    EXPECT_NEAR(t.speed(), 1, 1e-6);
}

TEST(Modulation, TheBendRangeCountsFromTheNextBendOn) {
    Ramp t;
    t.noteOn(60);
    t.controller(6, 12);
    EXPECT_NEAR(t.speed(), 1, 1e-4);
    t.bend(0);
    t.render(100);
    EXPECT_NEAR(t.speed(), 0.5, 1e-4);
    t.controller(6, 36); // beyond the table of two octaves
    t.bend(0);
    t.render(200);
    EXPECT_NEAR(t.speed(), 0.125, 1e-4);
    t.engine.setPitchBend(-1.0f / 3); // the panel's, of the same range
    t.render(200);
    EXPECT_NEAR(t.speed(), 0.5, 1e-4);
}

// The table of a shape, as the pan that a full depth makes of it.
std::vector<float> table(int shape, int entries = 257) {
    Ramp t(entryRate, shape);
    t.engine.settings().lfoDestination = toPan;
    t.engine.settings().lfoDepth = 1;
    std::vector<float> values;
    for (int i = 0; i < entries; ++i) {
        t.render(1);
        values.push_back(t.engine.settings().pan);
    }
    return values;
}

TEST(Modulation, TheLfoHasItsShapes) {
    const auto triangle = table(0), sine = table(1), saw = table(2), square = table(3), exponent = table(4);
    for (const auto& [i, value] : {std::pair{0, 0.0f},
                                   {32, 0.5f},
                                   {64, 1.0f},
                                   {96, 0.5f},
                                   {128, 0.0f},
                                   {160, -0.5f},
                                   {192, -1.0f},
                                   {255, -1 / 64.0f},
                                   {256, 0.0f}})
        EXPECT_EQ(triangle[static_cast<std::size_t>(i)], value) << i;
    for (std::size_t i = 0; i < 256; ++i) {
        const auto at = static_cast<double>(i);
        EXPECT_NEAR(sine[i], std::sin(2 * std::numbers::pi * at / 256), 1e-7) << i;
        EXPECT_NEAR(saw[i], at / 255 * 2 - 1, 1e-7) << i;
        EXPECT_EQ(square[i], i < 128 ? 1 : -1) << i;
        const double x = (i < 128 ? at : 256 - at) / 128;
        EXPECT_NEAR(exponent[i], (std::exp(x) - 1) / (std::exp(1.0) - 1) * 2 - 1, 1e-6) << i;
    }
    EXPECT_EQ(table(99), triangle); // a shape that does not exist leaves the table as it is
}

TEST(Modulation, BetweenTwoEntriesTheLfoGoesStraightAndAcrossTheEndToTheGuard) {
    Ramp t(entryRate / 2, 2); // saw: -1 .. 1, guard -1
    t.engine.settings().lfoDestination = toPan;
    t.engine.settings().lfoDepth = 1;
    t.render(4);
    EXPECT_NEAR(t.engine.settings().pan, 1.5 / 255 * 2 - 1, 1e-6);
    t.render(508);
    EXPECT_NEAR(t.engine.settings().pan, 0, 1e-6); // half way from 1 to -1
    t.engine.settings().lfoRate = 0;
    t.engine.applySettings();
    t.render(1);
    const float frozen = t.engine.settings().pan;
    t.render(1000);
    EXPECT_EQ(t.engine.settings().pan, frozen);
}

TEST(Modulation, VibratoFollowsTheWheelAndEndsInTune) {
    Ramp t;
    t.noteOn(60);
    t.controller(1, 127);
    EXPECT_NEAR(t.speed(), std::exp2(1 / 12.0), 1e-3); // a semitone
    t.controller(1, 0);
    EXPECT_NEAR(t.speed(), 1, 1e-6);

    Ramp late;
    late.render(10);
    late.controller(1, 127);
    late.noteOn(60);
    late.controller(1, 0); // the wheel is back before the note's first sample
    late.render(1);
    EXPECT_NEAR(late.speed(), 1, 1e-6);
}

TEST(Modulation, EachSourceAloneSetsTheDepth) {
    for (const int source : {fromNone, fromModWheel, fromAfterTouch, fromVelocity, 9}) {
        Ramp t;
        InstrumentSettings& settings = t.engine.settings();
        settings.lfoDepthSource = source;
        const auto depth = [&] {
            t.render(1);
            const float value = settings.lfoDepth;
            settings.lfoDepth = 0.0f;
            return value;
        };
        t.engine.postEvent(0xD0, 0, 100, 100, 0);
        EXPECT_EQ(depth(), 0) << source;
        t.controller(1, 64);
        EXPECT_EQ(depth(), source == fromModWheel ? 64 / 127.0f : 0) << source;
        t.engine.postEvent(midi::polyAftertouch, 0, 3, 64, 0);
        EXPECT_EQ(depth(), source == fromAfterTouch ? 64 / 127.0f : 0) << source;
        t.noteOn(60, 64);
        EXPECT_EQ(depth(), source == fromVelocity ? 0.75333f : 0) << source;
    }
}

TEST(Modulation, TremoloReplacesTheLevel) {
    TestInstrument t;
    t.engine.settings().lfoDestination = toExpression;
    t.addLevel(0.5f);
    t.noteOn(60);
    EXPECT_EQ(t.next(), 0); // depth 0 silences
    t.engine.settings().lfoDepth = 1;
    t.engine.settings().lfoShape = 3;
    t.engine.applySettings();
    // +1 and -1: nothing changes but at the four steps between them.
    EXPECT_GT(std::ranges::count(t.render(30000).left, 0.5f), 29700);
}

TEST(Modulation, AutoPanTurnsDownTheFarSide) {
    TestInstrument t;
    t.engine.settings().lfoDestination = toPan;
    t.engine.settings().lfoShape = 3;
    t.engine.settings().lfoRate = entryRate;
    t.engine.settings().lfoDepth = 0.75f;
    t.engine.applySettings();
    t.addLevel(0.5f);
    t.noteOn(60);
    const Stereo out = t.render(200);
    EXPECT_EQ(out.left[10], 0.125f);
    EXPECT_EQ(out.right[10], 0.5f);
    EXPECT_EQ(out.left[190], 0.5f);
    EXPECT_EQ(out.right[190], 0.125f);
    t.engine.settings().lfoDepth = 0;
    for (int frame = 0; frame < 256; ++frame, t.next())
        EXPECT_FALSE(std::signbit(t.engine.settings().pan.load()) && frame > 0) << "a saved project would change";
}

} // namespace
} // namespace zarno
