// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

struct Listener : ZSEDelegate {
    bool loadProgress(float, const char*, const char*) override { return true; }
    void groupsChanged() override { ++groups; }
    void reportMessage(const char*, char*) override {}
    void settingsChanged() override { ++settings; }
    void requestLicenceText(char*) override {}
    int groups = 0, settings = 0;
};

TEST(NewInstrument, NothingOfTheOldOneSoundsOrWaits) {
    TestInstrument t(1);
    t.addLevel(0.5f);
    t.controller(64, 127);
    t.noteOn(60);
    t.render(1);
    t.noteOn(61); // waits for the only voice
    t.render(1);
    t.noteOn(62); // and this one for the next block
    t.engine.clear();
    t.addLevel(0.25f);
    EXPECT_EQ(t.engine.playingVoices(), 0);
    EXPECT_EQ(t.engine.currentGroupIndex(), -1);
    for (const float x : t.render(1000).left)
        ASSERT_EQ(x, 0);
    t.noteOn(60);
    t.noteOff(60, 1);
    EXPECT_EQ(t.render(3).left, (std::vector<float>{0.25f, 0, 0})); // the pedal is up
}

TEST(NewInstrument, ThePlayersControlsStayWhereTheyAre) {
    TestInstrument t;
    t.addLevel(0.5f);
    t.engine.postEvent(midi::programChange, 0, 9, 0, 0);
    t.controller(2, 100);
    t.controller(11, 0);
    t.bend(16383);
    t.render(300);
    t.engine.clear();
    GroupRecord byProgram, byController;
    byProgram.trigger = 4;
    byProgram.program = 9;
    byController.trigger = 3;
    byController.controllerNumber = 2;
    byController.controllerLow = 100;
    t.addLevel(0.25f, byProgram);
    t.addLevel(0.5f, byController).record.fixedPitch = 0;
    t.noteOn(60);
    t.render(1);
    EXPECT_EQ(t.engine.activeGroups().size(), 2u);
    EXPECT_NEAR(t.next(), 0.75f * 0.0316f, 1e-4);
}

TEST(NewInstrument, TheListenerHearsOfGroupsAndSettings) {
    TestInstrument t;
    Listener listener;
    t.engine.setDelegate(&listener);
    t.addLevel(0.5f);
    t.addLevel(0.5f);
    ZGroup* first = t.engine.groups()[0].get();
    t.engine.activateGroup(first);
    t.engine.activateGroup(first);
    t.engine.activateGroup(nullptr);
    EXPECT_EQ(listener.groups, 1);
    t.engine.deactivateGroup(first);
    t.engine.deactivateGroup(first);
    EXPECT_EQ(listener.groups, 2);
    t.engine.activateGroup(first);
    t.engine.deactivateAllGroups(); // on purpose nobody is told
    EXPECT_EQ(listener.groups, 3);
    t.controller(7, 100);
    t.render(1);
    t.engine.requestApplySettings();
    t.render(1);
    EXPECT_EQ(listener.settings, 2);
}

} // namespace
} // namespace zarno
