// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

struct Held : TestInstrument {
    Held() {
        addLevel(0.5f);
        noteOn(60);
        render(1);
    }

    // Where left and right settle, against the level.
    std::pair<float, float> settled() {
        const Stereo out = render(300);
        return {out.left.back() / 0.5f, out.right.back() / 0.5f};
    }
};

TEST(Controllers, VolumeAndExpressionShareOneTargetAndTheLastWins) {
    Held t;
    t.controller(7, 0);
    EXPECT_FLOAT_EQ(t.settled().first, static_cast<float>(std::pow(10, -60 / 20.0)));
    t.controller(11, 127);
    EXPECT_EQ(t.settled().first, 1);
    t.controller(11, 0);
    EXPECT_FLOAT_EQ(t.settled().first, static_cast<float>(std::pow(10, -30 / 20.0)));
    t.engine.requestApplySettings();
    EXPECT_FLOAT_EQ(t.settled().first, static_cast<float>(std::pow(10, -60 / 20.0)));
    t.engine.settings().volume = -121.0f; // below a millionth
    t.engine.requestApplySettings();
    EXPECT_EQ(t.settled().first, 0);
}

TEST(Controllers, LevelsMoveByAHundredthASample) {
    Held t;
    t.controller(11, 0);
    const Stereo out = t.render(200);
    for (std::size_t i = 1; i < out.size(); ++i)
        ASSERT_LE(out.left[i - 1] - out.left[i], 0.00501f) << i;
    EXPECT_NEAR(out.left[49], 0.25f, 1e-4);
}

TEST(Controllers, PanTurnsDownTheFarSide) {
    Held t;
    for (const int number : {8, 10}) {
        t.controller(number, 0);
        EXPECT_EQ(t.settled(), std::pair(1.0f, 0.0f));
        t.controller(number, 96);
        EXPECT_EQ(t.settled(), std::pair(0.5f, 1.0f));
        t.controller(number, 64);
        EXPECT_EQ(t.settled(), std::pair(1.0f, 1.0f));
    }
}

TEST(Controllers, SettingsFollowTheirControllers) {
    TestInstrument t;
    InstrumentSettings& settings = t.engine.settings();
    const auto send = [&](int number, int value) {
        t.controller(number, value);
        t.render(1);
    };
    send(5, 127);
    EXPECT_EQ(settings.glideTime, 0.127f);
    send(91, 64);
    EXPECT_EQ(settings.reverbSend, 64 / 127.0f);
    for (const auto& [number, value, mode] : {std::tuple{68, 64, 2}, {68, 63, 0}, {126, 0, 1}, {127, 0, 0}}) {
        send(number, value);
        EXPECT_EQ(settings.playMode, mode) << number << ", " << value;
    }
}

TEST(Controllers, AllNotesOffReleases) {
    for (const int number : {120, 123}) {
        Held t;
        t.controller(64, 127);
        t.controller(number, 0);
        t.render(1);
        EXPECT_EQ(t.engine.playingVoices(), 0) << number;
    }
}

TEST(Controllers, AResetTakesEffectInTheNextBlockAndKeepsTheMix) {
    Held t;
    InstrumentSettings& settings = t.engine.settings();
    for (const auto& [number, value] :
         {std::pair{1, 127}, {7, 100}, {10, 30}, {64, 127}, {91, 127}, {68, 127}, {6, 24}})
        t.controller(number, value);
    t.noteOff(60);
    t.controller(121, 0, 5);
    t.render(10);
    EXPECT_EQ(t.engine.playingVoices(), 1);
    EXPECT_EQ(settings.lfoDepth, 1);
    t.render(2);
    EXPECT_EQ(t.engine.playingVoices(), 0); // the pedal went up
    EXPECT_EQ(settings.lfoDepth, 0);
    EXPECT_EQ(settings.reverbSend, 0);
    EXPECT_EQ(settings.playMode, 0);
    EXPECT_FLOAT_EQ(settings.volume, 27 / 127.0f * -60);
    EXPECT_EQ(settings.pan, -34 / 64.0f);
}

TEST(Controllers, AResetReachesTheGroupsOfItsOwnChannel) {
    TestInstrument t;
    GroupRecord group;
    group.trigger = 1;
    group.channel = 5;
    t.addLevel(0.5f, group);
    t.controller(121, 0, 0, 5);
    t.render(1);
    t.noteOff(1, 0, 0);
    t.render(1); // the reset's events come after it in the same block
    EXPECT_EQ(t.engine.activeGroups().size(), 0u);
    t.controller(121, 0, 0, 5);
    t.render(1);
    t.render(1);
    EXPECT_EQ(t.engine.activeGroups().size(), 1u);
}

} // namespace
} // namespace zarno
