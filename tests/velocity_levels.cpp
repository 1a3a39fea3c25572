// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Tables.h"
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

TEST(VelocityLevels, TablesAreTheirFormulas) {
    for (int cents = -2400; cents <= 2400; ++cents) {
        const auto s = static_cast<float>(cents) / 100;
        const int index = static_cast<int>(s * 100); // truncated, so a few cents fall one short
        EXPECT_EQ(semitoneRatio(s), static_cast<float>(std::pow(2.0, index / 1200.0))) << cents;
    }
    EXPECT_EQ(semitoneRatio(0.999f), static_cast<float>(std::pow(2.0, 99 / 1200.0)));
    EXPECT_EQ(semitoneRatio(-0.999f), static_cast<float>(std::pow(2.0, -99 / 1200.0)));
    for (float outside : {24.004f, -24.004f, 60.5f})
        EXPECT_EQ(semitoneRatio(outside), static_cast<float>(std::pow(2.0, double{outside} / 12))) << outside;
    for (int hundredths = -6000; hundredths <= 0; ++hundredths) {
        const auto dB = static_cast<float>(hundredths) / 100;
        const int index = static_cast<int>(dB * 100);
        EXPECT_EQ(tabledDecibelGain(dB), static_cast<float>(std::pow(10.0, index / 2000.0))) << hundredths;
    }
    EXPECT_EQ(tabledDecibelGain(-72.5f), static_cast<float>(std::pow(10.0, -72.5 / 20)));
    EXPECT_EQ(tabledDecibelGain(6.0f), static_cast<float>(std::pow(10.0, 6.0 / 20)));
}

// FNV-1a over all 128 values in hundred-thousandths, four little-endian bytes each.
std::uint32_t checksumOfCurve(int curve) {
    std::uint32_t hash = 2166136261u;
    for (int velocity = 0; velocity < 128; ++velocity) {
        const auto value = static_cast<std::uint32_t>(std::lround(velocityCurveValue(curve, velocity) * 100000.0));
        for (int shift = 0; shift < 32; shift += 8)
            hash = (hash ^ (value >> shift & 255u)) * 16777619u;
    }
    return hash;
}

TEST(VelocityLevels, EveryValueOfTheTabledCurvesIsUnchanged) {
    EXPECT_EQ(checksumOfCurve(0), 0x4e35f9aeu);
    EXPECT_EQ(checksumOfCurve(1), 0xc5fbec70u);
}

TEST(VelocityLevels, CurvesRiseFromSoftToFull) {
    for (int curve = 0; curve <= 2; ++curve) {
        for (int v = 1; v < 128; ++v)
            EXPECT_GE(velocityCurveValue(curve, v), velocityCurveValue(curve, v - 1)) << curve << ", " << v;
        EXPECT_EQ(velocityCurveValue(curve, 127), 1.0f);
    }
    EXPECT_EQ(velocityCurveValue(0, 0), 0.01f);
    EXPECT_EQ(velocityCurveValue(0, 64), 0.75333f);
    EXPECT_EQ(velocityCurveValue(1, 0), 0.0f);
    EXPECT_EQ(velocityCurveValue(1, 64), 0.13853f);
    EXPECT_EQ(velocityCurveValue(1, 126), 0.87524f);
    EXPECT_EQ(velocityCurveValue(2, 64), static_cast<float>(64 / 127.0));
    EXPECT_EQ(velocityCurveValue(77, 64), velocityCurveValue(2, 64));
}

float levelAt(int velocity, int floor, int spanOffset, int ignore = 0) {
    TestInstrument t;
    InstrumentSettings& settings = t.engine.settings();
    settings.velocityCurve = 2;
    settings.velocityFloor = floor;
    settings.velocitySpanOffset = spanOffset;
    t.addLevel(0.0001f).record.ignoreVelocity = ignore;
    t.noteOn(60, velocity);
    return t.next() / 0.0001f;
}

TEST(VelocityLevels, FloorAndSpanShapeTheNote) {
    EXPECT_FLOAT_EQ(levelAt(127, -48, 0), 1.0f);
    EXPECT_NEAR(20 * std::log10(levelAt(64, -48, 0)), -48 + 64 / 127.0 * 48, 0.02);
    EXPECT_NEAR(20 * std::log10(levelAt(1, -90, 0)), -90 + 90 / 127.0, 0.02); // below the table
    EXPECT_NEAR(20 * std::log10(levelAt(127, -48, -20)), -48 + 68, 0.02);     // above it
    EXPECT_NEAR(20 * std::log10(levelAt(127, -48, 30)), -48 + 18, 0.02);      // a narrower span
    EXPECT_NEAR(20 * std::log10(levelAt(127, -10, 30)), -10 + 20, 0.02);      // the span has no sign
    EXPECT_FLOAT_EQ(levelAt(1, -48, 0, 1), 1.0f);
}

} // namespace
} // namespace zarno
