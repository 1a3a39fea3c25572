// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace zarno {
namespace {

// A click of one frame at half scale, then nothing but the reverb.
struct Click : TestInstrument {
    explicit Click(float rate = 44100) {
        engine.setSampleRate(rate);
        engine.settings().reverbSend = 1.0f;
        const TestSample sample =
            TestSample::made(3, 1, false, rate, [](std::uint64_t n, int) { return n == 0 ? 0.5 : 0.0; });
        addZone(addGroup(), sample);
        noteOn(60);
    }
};

TEST(ReverbSend, EchoesComeAtTheCombsLengths) {
    constexpr float strength = (0.5f + 0.5f) * 0.015f;
    constexpr float near = strength * 1.275f, far = strength * 0.225f;
    // Before the first allpass answers, 225 samples behind the first comb.
    const std::map<std::size_t, std::pair<float, float>> echoes = {{1116, {near, far}}, {1188, {near, far}},
                                                                   {1277, {near, far}}, {1139, {far, near}},
                                                                   {1211, {far, near}}, {1300, {far, near}}};
    const Stereo out = Click().render(1341);
    EXPECT_EQ(out.left[0], 0.5f);
    for (std::size_t i = 1; i < out.size(); ++i) {
        const auto echo = echoes.find(i);
        const auto [left, right] = echo == echoes.end() ? std::pair(0.0f, 0.0f) : echo->second;
        EXPECT_FLOAT_EQ(out.left[i], left) << i;
        EXPECT_FLOAT_EQ(out.right[i], right) << i;
    }
}

TEST(ReverbSend, TheRoomIsAsLargeAtEveryRate) {
    for (const float rate : {22050.0f, 48000.0f, 96000.0f}) {
        Click t(rate);
        t.render(1);
        int silent = 1;
        while (silent < 100000 && t.next() == 0)
            ++silent;
        EXPECT_EQ(silent, std::lround(1116 * rate / 44100)) << rate;
    }
}

TEST(ReverbSend, TheTailDiesAway) {
    Click t;
    double energy[4] = {};
    for (double& part : energy)
        for (const float x : t.render(22050).left)
            part += double{x} * x;
    EXPECT_GT(energy[1], 0);
    EXPECT_LT(energy[2], energy[1] * 0.2);
    EXPECT_LT(energy[3], energy[2] * 0.2);
}

TEST(ReverbSend, AtSendZeroTheTailStandsStillAndGoesOnLater) {
    Click whole, broken;
    const Stereo wanted = whole.render(4000);
    const Stereo before = broken.render(2000);
    broken.controller(91, 0);
    for (const float x : broken.render(777).left)
        ASSERT_EQ(x, 0);
    broken.controller(91, 127);
    const Stereo after = broken.render(2000);
    for (std::size_t i = 0; i < 2000; ++i) {
        ASSERT_EQ(before.left[i], wanted.left[i]) << i;
        ASSERT_EQ(after.right[i], wanted.right[i + 2000]) << i;
    }
}

} // namespace
} // namespace zarno
